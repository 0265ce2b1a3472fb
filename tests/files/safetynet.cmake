# Snapshots and journal. The crash test kills a program of its own.
add_executable(zandrel_crashvictim crashvictim.cpp)
set_target_properties(zandrel_crashvictim PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
target_include_directories(zandrel_crashvictim PRIVATE ${PROJECT_SOURCE_DIR}/tests)
target_link_libraries(zandrel_crashvictim PRIVATE zandrel_shell Qt6::Core)

zandrel_test(files_safetynet_test LABEL unit
  SOURCES journal_test.cpp snapshots_test.cpp
  LINKS zandrel_files_fixture)
zandrel_test(files_snapshotlink_test LABEL link SERIAL
  SOURCES snapshotlink_test.cpp
  LINKS zandrel_files_fixture zandrel_link_fixture)
zandrel_test(files_crash_test LABEL slow TIMEOUT 120
  SOURCES crash_test.cpp
  LINKS zandrel_files_fixture)
target_compile_definitions(files_crash_test PRIVATE ZANDREL_CRASHVICTIM="$<TARGET_FILE:zandrel_crashvictim>")
add_dependencies(files_crash_test zandrel_crashvictim)
