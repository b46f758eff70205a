# 32-bit x86 on a 64-bit machine, which runs it too. The kernel's headers are the same; the package that links them into
# /usr/include excludes all cross compilers.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i386)
set(CMAKE_C_COMPILER gcc-12)
set(CMAKE_CXX_COMPILER g++-12)
set(CMAKE_C_FLAGS_INIT "-m32 -idirafter /usr/include/x86_64-linux-gnu")
set(CMAKE_CXX_FLAGS_INIT "-m32 -idirafter /usr/include/x86_64-linux-gnu")
set(CMAKE_CROSSCOMPILING_EMULATOR env)
