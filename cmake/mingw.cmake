# A toolchain for Windows. The file that includes this one sets the processor and the prefix of the tools. ucrt.specs
# links the universal C runtime in place of the older one, which the compiler is configured for. The headers remain those
# of the older one, because libstdc++ was compiled with them; only what both runtimes share is used. The compiler's
# libraries are linked statically.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${tools}-gcc-posix)
set(CMAKE_CXX_COMPILER ${tools}-g++-posix)
set(CMAKE_RC_COMPILER ${tools}-windres)
foreach(language C CXX)
    set(CMAKE_${language}_FLAGS_INIT "-specs=${CMAKE_CURRENT_LIST_DIR}/ucrt.specs")
endforeach()
foreach(kind EXE SHARED)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT -static)
endforeach()
set(CMAKE_FIND_ROOT_PATH /usr/${tools})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
