# SPDX-License-Identifier: MIT
# What keeps a fault of this code from becoming somebody else's door. The sanitizers find more than the checks of
# the C library, which would hide it from them.
add_library(vesk_hardening INTERFACE)
if(NOT VESK_SANITIZE)
  set(OPTIMISED $<CONFIG:Release,RelWithDebInfo,MinSizeRel>) # without optimising, the C library only warns
  target_compile_options(vesk_hardening INTERFACE
    -fstack-protector-strong $<${OPTIMISED}:-U_FORTIFY_SOURCE> $<${OPTIMISED}:-D_FORTIFY_SOURCE=2>)
endif()
target_link_options(vesk_hardening INTERFACE -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
