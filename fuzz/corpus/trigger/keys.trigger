{ "Event": ["KEY_PRESSED 5"], "Action": ["CREATE_ENTITY x sheep POSITION 1e39 nan 0x1", "WAIT 1e999", "WAIT -1", "WAIT"] }
