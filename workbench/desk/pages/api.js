// The JSON interface of the desk.

// Gives what the interface answers under /api/; throws an Error with the interface's own words.
export async function getJson(path) {
  const response = await fetch(`/api/${path}`);
  const answer = await response.json();
  if (!response.ok) {
    throw new Error(answer.error.message);
  }
  return answer;
}
