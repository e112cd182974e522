# Run with cmake -P: builds TARGET in BUILD_DIR from scratch (its objects under OBJECT_DIR
# are removed first, since a stub the compiler stopped at is not a recorded dependency).
# The build's output is the test's output.
file(REMOVE_RECURSE ${OBJECT_DIR})
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD_DIR} --target ${TARGET})
