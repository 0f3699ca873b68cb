// The start page: which account the desk has open.
import 'regular-table';
import {getJson} from './api.js';

const main = document.querySelector('main');
try {
  const account = await getJson('account');
  main.textContent = account.name;
} catch (error) {
  main.textContent = error.message;
}
