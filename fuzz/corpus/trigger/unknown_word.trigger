{ "Event": ["KEY_RELEASED z", "DOOR_OPENED"], "Action": ["CREATE_ENTITY a nest POSITION 1 2 3"] }
