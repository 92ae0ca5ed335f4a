-- A diary of the versions that had the reference lists and the tick marks,
-- but no guids, no feeding table, no birth time and no text day column.

CREATE TABLE child (
    chid INTEGER PRIMARY KEY,
    chname TEXT,
    birthday INTEGER,
    sex INTEGER,
    deleted INTEGER,
    blood TEXT,
    allergen TEXT
);

CREATE TABLE childdata (
    datid INTEGER PRIMARY KEY,
    chid INTEGER,
    dat INTEGER,
    type TEXT,
    value TEXT
);

CREATE TABLE childconst (
    coid INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,
    coname TEXT,
    cotype INTEGER NOT NULL,
    deleted INTEGER NOT NULL DEFAULT 0
);

CREATE TABLE childselect (
    pselid INTEGER PRIMARY KEY AUTOINCREMENT,
    chid INTEGER,
    seltypeid INTEGER,
    seltagid INTEGER
);

INSERT INTO child VALUES (1, 'Соня', 1420059600, 2, 0, '33', '');

INSERT INTO childconst (coid, coname, cotype, deleted) VALUES
    (1, 'Первая улыбка', 1, 2),
    (2, 'Держит голову', 1, 2),
    (31, 'Не известна', 4, 2),
    (33, 'II (A) Rh+', 4, 2),
    (40, 'Бабушкин пирог', 9, 0);

INSERT INTO childselect (chid, seltypeid, seltagid) VALUES (1, 1, 2);

INSERT INTO childdata (chid, dat, type, value) VALUES
    (1, 1420059600, 'ves', '3350'),
    (1, 1422738000, 'ves', '4.1'),
    (1, 1422738000, 'achive', '1<tr>2'),
    (1, 1425157200, 'temp', '36.9');
