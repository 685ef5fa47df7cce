{ "Event": ["KEY_RELEASED Z", 3], "Action": { "WAIT": 1 } }
