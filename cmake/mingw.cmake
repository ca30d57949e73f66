# A toolchain for Windows, with the C runtime of the system (the universal one). The headers stay those of the older
# runtime, for which the C++ library is made: its types are part of the interface of that library, and what the two
# runtimes share is all that is used here. The compiler's own libraries are a part of what is made. The file that includes
# this one names the processor and the prefix of the tools.
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
