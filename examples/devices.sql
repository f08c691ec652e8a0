-- Device database of the demo drive family (source of mx8dd.db).
-- Build it with:   odict devices build examples/devices.sql -o mx8dd.db
-- or with sqlite:  sqlite3 mx8dd.db < examples/devices.sql
--
-- Versions are 32-bit words: main << 24 | minor << 16 | build (1.0.0 = 16777216).
-- Property keys used when narrowing a dictionary:
--   243  DC link low-voltage capability (F64; 0 = none); also the undervoltage threshold minimum
--   225  mask of the PWM frequencies the power stage offers (U32)
--   214  brake chopper options: 0x100 internal, 0x200 external, 0x400 both (U32)
--   244  overvoltage threshold maximum in V (F32)
--   245  maximum current in A (F32), per axis where an axis differs
-- Type numbers: 6 = U32, 10 = F32, 11 = F64.

CREATE TABLE device   (id INTEGER PRIMARY KEY, name TEXT NOT NULL,
                       version_min INTEGER NOT NULL, version_max INTEGER NOT NULL);
CREATE TABLE property (device_id INTEGER NOT NULL REFERENCES device(id),
                       key INTEGER NOT NULL, pos INTEGER NOT NULL DEFAULT 0,
                       type INTEGER NOT NULL, value TEXT NOT NULL,
                       PRIMARY KEY (device_id, key, pos));

-- A single-axis drive without low-voltage supply, firmware 1.x.
INSERT INTO device VALUES (1, 'MX8-S1', 16777216, 33554431);
INSERT INTO property VALUES (1, 243, 0, 11, '0');
INSERT INTO property VALUES (1, 225, 0, 6, '0x3');
INSERT INTO property VALUES (1, 214, 0, 6, '0x300');
INSERT INTO property VALUES (1, 244, 0, 10, '820');
INSERT INTO property VALUES (1, 245, 0, 10, '12.5');

-- The same drive with firmware 2.x: 16 kHz PWM added.
INSERT INTO device VALUES (2, 'MX8-S1', 33554432, 50331647);
INSERT INTO property VALUES (2, 243, 0, 11, '0');
INSERT INTO property VALUES (2, 225, 0, 6, '0x7');
INSERT INTO property VALUES (2, 214, 0, 6, '0x300');
INSERT INTO property VALUES (2, 244, 0, 10, '820');
INSERT INTO property VALUES (2, 245, 0, 10, '12.5');

-- A double-axis drive with 24 V low-voltage supply; the axes have their own current limits.
INSERT INTO device VALUES (3, 'MX8-D2', 16777216, 50331647);
INSERT INTO property VALUES (3, 243, 0, 11, '24');
INSERT INTO property VALUES (3, 225, 0, 6, '0xF');
INSERT INTO property VALUES (3, 214, 0, 6, '0x700');
INSERT INTO property VALUES (3, 244, 0, 10, '850');
INSERT INTO property VALUES (3, 245, 0, 10, '25');
INSERT INTO property VALUES (3, 245, 1, 10, '20');
INSERT INTO property VALUES (3, 245, 2, 10, '18');
