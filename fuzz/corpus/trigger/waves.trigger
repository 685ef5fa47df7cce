{
  "Event": ["TIME_ELAPSED 1"],
  "Action": [
    "CREATE_ENTITY spawn sheep POSITION 0 0 10",
    "WAIT 0.75",
    "CREATE_ENTITY spawn lamb POSITION 0 0 -10"
  ]
}
