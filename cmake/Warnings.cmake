# SPDX-License-Identifier: MIT
# The warnings that every target of this tree is built with; each of them is an error.
add_library(vesk_warnings INTERFACE)
target_compile_options(vesk_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wswitch-enum -Wnon-virtual-dtor
  -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(vesk_warnings INTERFACE -Wno-restrict) # GCC 12 suspects std::string at -O3, for nothing
  endif()
  if(VESK_SANITIZE STREQUAL thread)
    target_compile_options(vesk_warnings INTERFACE -Wno-tsan) # the fences stand between processes, not threads
  endif()
endif()
