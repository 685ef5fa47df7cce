{ "Event": ["TIME_ELAPSED 0", "", "KEY_TRIGGERED a", "TIME_INTERVAL 0.5"], "Condition": [7], "Action": ["", "  ", "SAY", "CREATE_ENTITY", "CREATE_ENTITY a nobody POSITION 1 2"] }
