/* a /* nested */ comment */ Select 1 -- to the end
, 2