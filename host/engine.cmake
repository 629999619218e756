# The translator. An object library: the client interface is looked up at run time, so all of it
# must be in the launcher, whether or not the launcher itself refers to it.
enable_language(ASM)
find_package(Threads REQUIRED)
add_library(host_engine OBJECT
  memory/address_set.cpp
  memory/advertised_sve.cpp
  client/api_inserted_code.cpp
  client/api_instructions.cpp
  client/api_operands.cpp
  client/api_process.cpp
  kernel/application_call.S
  memory/application_memory.cpp
  translation/assembler.cpp
  client/block_builder.cpp
  translation/block_code.cpp
  translation/branch_tables.cpp
  translation/code_cache.cpp
  translation/code_cache_interrupted.cpp
  translation/context_switch.S
  translation/control_flow.cpp
  processes/dispatch.cpp
  client/events.cpp
  processes/execution.cpp
  kernel/fatal.cpp
  kernel/fork_lock.cpp
  kernel/guarded_copy.S
  kernel/kernel_action.cpp
  kernel/kernel_call.cpp
  client/instruction_list.cpp
  translation/mangle.cpp
  memory/memory_map.cpp
  memory/own_files.cpp
  kernel/process_call.S
  processes/processes.cpp
  memory/program_break.cpp
  translation/register_fields.cpp
  processes/robust_list.cpp
  launcher/runtime.cpp
  signals/host_signals.cpp
  signals/signal_actions.cpp
  signals/signal_calls.cpp
  signals/signal_delivery.cpp
  signals/signal_frame.cpp
  signals/signals.cpp
  signals/thread_signals.cpp
  threads/stale_code.cpp
  processes/syscalls.cpp
  threads/thread.cpp
  processes/thread_calls.cpp)
target_link_libraries(host_engine PUBLIC host_loader Threads::Threads ${CMAKE_DL_LIBS})
