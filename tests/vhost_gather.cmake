# Snapshots replay anywhere: gather every shipped virtual host and compare
# dksmi's output on the snapshot with its output on the original tree.
if(TARGET dksmi AND TARGET dkvhost_cli)
  add_test(NAME vhost_gather_replay
    COMMAND bash ${CMAKE_CURRENT_SOURCE_DIR}/vhost/gather_replay_test.sh
      $<TARGET_FILE:dkvhost_cli> $<TARGET_FILE:dksmi> ${PROJECT_SOURCE_DIR}/vhost/profiles)
endif()
