-- Texts of the interface in other languages, keyed by their Russian source.
-- The key of the French column is "res", not "rus": the two languages were
-- filled in by different people, each into a column of their own. A "|" in a
-- text stands for a line break.
CREATE TABLE translate (
    rus TEXT,
    ger TEXT,
    res TEXT,
    fra TEXT
);

INSERT INTO translate (rus, ger, res, fra) VALUES
    ('Дневник', 'Tagebuch', 'Дневник', 'Journal'),
    ('Настройки', 'Einstellungen', 'Настройки', 'Réglages'),
    ('Фон программы', 'Hintergrund', 'Фон программы', 'Arrière-plan'),
    ('Добавить ребенка', 'Kind hinzufügen', 'Добавить ребенка', 'Ajouter un enfant'),
    ('Достижения', 'Erfolge', 'Достижения', 'Progrès'),
    ('Прививки', 'Impfungen', 'Прививки', 'Vaccins'),
    ('Здесь пока пусто.|Загляните позже.', 'Hier ist noch nichts.|Schauen Sie später vorbei.',
     'Здесь пока пусто.|Загляните позже.', 'Rien ici pour le moment.|Revenez plus tard.'),
    ('Рост', 'Größe', 'Рост', ''),
    ('Вес', '', 'Вес', 'Poids');
