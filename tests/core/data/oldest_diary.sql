-- A diary of the first versions: one profile table and one table of diary
-- rows with the day in seconds only. Weights were kept in grams, and each
-- achievement or health mark was a row of its own ("achiv101").

CREATE TABLE child (
    chid INTEGER PRIMARY KEY,
    chname TEXT,
    birthday INTEGER,
    sex INTEGER,
    deleted INTEGER
);

CREATE TABLE childdata (
    datid INTEGER PRIMARY KEY,
    chid INTEGER,
    dat INTEGER,
    type TEXT,
    value TEXT
);

-- Маша, born 2011-03-14 (Moscow), and Петя, born 2013-07-02.
INSERT INTO child VALUES (1, 'Маша', 1300050000, 2, 0);
INSERT INTO child VALUES (2, 'Петя', 1372712400, 1, 0);

INSERT INTO childdata (chid, dat, type, value) VALUES
    (1, 1300050000, 'ves', '3500'),
    (1, 1300050000, 'rost', '51'),
    (1, 1302728400, 'ves', '4.2'),
    (1, 1302728400, 'achiv101', '1'),
    (1, 1302728400, 'achiv103', '1'),
    (1, 1302728400, 'health191', '1'),
    (1, 1305320400, 'ves', '5150'),
    (1, 1305320400, 'temp', '12:30<td>37.2'),
    (1, 1305320400, 'comment', 'Первый раз в парке'),
    -- 21:30 UTC is already the next day in Moscow.
    (2, 1372800600, 'ves', '3.5'),
    (2, 1372800600, 'achiv102', '1');
