# The vector lengths of the build. SVE_VECTOR_BITS is that of libsve.a, libsve_client.so and the
# tests. Each of the further lengths gets a client of its own.
function(check_vector_length variable bits)
  set(rest none)
  if(bits MATCHES "^[1-9][0-9]*$" AND NOT bits GREATER 2048)
    math(EXPR rest "${bits} % 128")
  endif()
  if(NOT rest STREQUAL "0")
    message(FATAL_ERROR "${variable} has \"${bits}\". A vector length is a multiple of 128 from 128 "
                        "to 2048. Configure again with -D${variable}=${ARGN}, for example.")
  endif()
endfunction()

check_vector_length(SVE_VECTOR_BITS "${SVE_VECTOR_BITS}" 1920)
foreach(bits IN LISTS TESSALY_VECTOR_LENGTHS)
  check_vector_length(TESSALY_VECTOR_LENGTHS "${bits}" "'512;2048'")
endforeach()

set(further_lengths ${TESSALY_VECTOR_LENGTHS})
set(lengths_of_long_tests)
if(BUILD_TESTING)
  list(APPEND further_lengths 512 2048)
  set(lengths_of_long_tests 128 256 1024)
  list(REMOVE_ITEM lengths_of_long_tests ${further_lengths} ${SVE_VECTOR_BITS})
  list(APPEND further_lengths ${lengths_of_long_tests})
endif()
list(REMOVE_DUPLICATES further_lengths)
list(REMOVE_ITEM further_lengths ${SVE_VECTOR_BITS})
