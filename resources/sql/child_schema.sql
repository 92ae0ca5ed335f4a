-- The database of a new installation: every table in its final shape, and
-- the first profile, which the first start fills in.

CREATE TABLE child (
    chid INTEGER PRIMARY KEY,
    chname TEXT,
    birthday INTEGER,
    sex INTEGER,
    deleted INTEGER,
    blood TEXT,
    allergen TEXT,
    ves TEXT,
    rost TEXT,
    birthtime INTEGER,
    sbirthdate TEXT,
    sbirthtime TEXT,
    documents TEXT,
    childguid TEXT,
    obed TEXT
);

CREATE TABLE childdata (
    datid INTEGER PRIMARY KEY,
    chid INTEGER,
    dat INTEGER,
    type TEXT,
    value TEXT,
    sdat TEXT,
    childguid TEXT
);

CREATE TABLE childconst (
    coid INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,
    coname TEXT,
    cotype INTEGER NOT NULL,
    deleted INTEGER NOT NULL DEFAULT 0,
    coguid TEXT
);

CREATE TABLE childselect (
    pselid INTEGER PRIMARY KEY AUTOINCREMENT,
    chid INTEGER,
    seltypeid INTEGER,
    seltagid INTEGER,
    childguid TEXT,
    tagguid TEXT
);

CREATE TABLE childkorm (
    koid INTEGER NOT NULL PRIMARY KEY AUTOINCREMENT,
    kodate INTEGER,
    kotype INTEGER,
    kovalue TEXT,
    chid INTEGER,
    kosum INTEGER,
    kodates TEXT,
    childguid TEXT
);

-- Every diary query selects one child's days by date(sdat); years of entries
-- must not mean a scan of the whole table.
CREATE INDEX childdata_child_day ON childdata (childguid, date(sdat));
-- The latest value of one type before a day (an illness carried over from
-- an earlier year, the last weight) is one step down this index.
CREATE INDEX childdata_child_type_day ON childdata (childguid, type, date(sdat));
-- The reminders' rebuild, at every activation, reads the next days of one
-- type over all children together.
CREATE INDEX childdata_type_day ON childdata (type, date(sdat));
CREATE INDEX childconst_guid ON childconst (coguid);
CREATE INDEX childconst_type ON childconst (cotype, deleted);
CREATE INDEX childselect_child ON childselect (childguid, seltypeid);
CREATE INDEX childkorm_child_moment ON childkorm (childguid, datetime(kodates));
-- Each launch asks whether rows of older versions are left to convert;
-- these hold only such rows, so the answer for a current diary is an empty
-- index rather than a scan of years of entries.
CREATE INDEX childdata_undated ON childdata (datid) WHERE sdat IS NULL;
CREATE INDEX childdata_grams ON childdata (type, CAST(value AS REAL)) WHERE type = 'ves';
CREATE INDEX childkorm_undated ON childkorm (koid) WHERE kodates IS NULL;

-- The first profile keeps the fixed guid of profile number 1, so that a
-- diary started here and one started on an old device meet as one child.
INSERT INTO child (chid, chname, sex, deleted, blood, allergen, sbirthtime, childguid, obed)
VALUES (1, '', 0, 0, '00000000-0000-0000-0002-000000000031', '', '06:00',
        '00000000-0000-0000-0001-000000000001',
        '08:00<table>11:00<table>14:00<table>16:00<table>20:00');
