set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(tools x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
# The compiler's libraries refer to _setjmp, which the universal runtime calls __intrinsic_setjmp.
foreach(kind EXE SHARED)
    string(APPEND CMAKE_${kind}_LINKER_FLAGS_INIT " -Wl,--defsym=_setjmp=__intrinsic_setjmp")
endforeach()
