# The translator. An object library: the client interface is looked up at run time, so all of it
# must be in the launcher, whether or not the launcher itself refers to it.
enable_language(ASM)
find_package(Threads REQUIRED)
add_library(host_engine OBJECT
  address_set.cpp
  advertised_sve.cpp
  api_inserted_code.cpp
  api_instructions.cpp
  api_operands.cpp
  api_process.cpp
  application_call.S
  application_memory.cpp
  assembler.cpp
  block_builder.cpp
  block_code.cpp
  branch_tables.cpp
  code_cache.cpp
  code_cache_interrupted.cpp
  context_switch.S
  control_flow.cpp
  dispatch.cpp
  events.cpp
  execution.cpp
  fatal.cpp
  fork_lock.cpp
  guarded_copy.S
  instruction_list.cpp
  mangle.cpp
  memory_map.cpp
  own_files.cpp
  process_call.S
  processes.cpp
  program_break.cpp
  register_fields.cpp
  robust_list.cpp
  runtime.cpp
  signal_actions.cpp
  signal_calls.cpp
  signal_delivery.cpp
  signal_frame.cpp
  signals.cpp
  stale_code.cpp
  syscalls.cpp
  thread.cpp
  threads.cpp)
target_link_libraries(host_engine PUBLIC host_loader Threads::Threads ${CMAKE_DL_LIBS})
