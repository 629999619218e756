set(fp_sources
  ${CMAKE_CURRENT_LIST_DIR}/add.cpp
  ${CMAKE_CURRENT_LIST_DIR}/compare.cpp
  ${CMAKE_CURRENT_LIST_DIR}/convert.cpp
  ${CMAKE_CURRENT_LIST_DIR}/divide.cpp
  ${CMAKE_CURRENT_LIST_DIR}/exponential.cpp
  ${CMAKE_CURRENT_LIST_DIR}/from_fixed.cpp
  ${CMAKE_CURRENT_LIST_DIR}/min_max.cpp
  ${CMAKE_CURRENT_LIST_DIR}/multiply.cpp
  ${CMAKE_CURRENT_LIST_DIR}/multiply_add.cpp
  ${CMAKE_CURRENT_LIST_DIR}/recip_estimate.cpp
  ${CMAKE_CURRENT_LIST_DIR}/recip_exponent.cpp
  ${CMAKE_CURRENT_LIST_DIR}/round.cpp
  ${CMAKE_CURRENT_LIST_DIR}/round_int.cpp
  ${CMAKE_CURRENT_LIST_DIR}/rsqrt_estimate.cpp
  ${CMAKE_CURRENT_LIST_DIR}/scale.cpp
  ${CMAKE_CURRENT_LIST_DIR}/sign.cpp
  ${CMAKE_CURRENT_LIST_DIR}/square_root.cpp
  ${CMAKE_CURRENT_LIST_DIR}/steps.cpp
  ${CMAKE_CURRENT_LIST_DIR}/to_fixed.cpp
  ${CMAKE_CURRENT_LIST_DIR}/trigonometric.cpp)
# A separate target, so that the tests of its numbers do not have to wait for the rest.
add_library(sve_fp OBJECT ${fp_sources})
target_compile_options(sve_fp PRIVATE $<$<CONFIG:Release>:-O3>)
# Results must not depend on the processor's floating-point state, so the compiler must not use its
# floating-point registers.
target_compile_options(sve_fp PRIVATE -mgeneral-regs-only)
