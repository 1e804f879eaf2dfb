# Builds the customer's program from a command line, with what pkg-config says of the installed package.
#
#     cmake -DPREFIX=<prefix> -DPKG_CONFIG=... -DCXX=... -DSOURCE=main.cpp -DPROGRAM=<exe> -P BuildWithPkgConfig.cmake

cmake_minimum_required(VERSION 3.25)

# Nothing of the machine's own packages, whose headers are not for Windows.
set(ENV{PKG_CONFIG_LIBDIR} "${PREFIX}/lib/pkgconfig")
execute_process(COMMAND "${PKG_CONFIG}" --cflags --libs kelpkit
  OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY
)
separate_arguments(flags UNIX_COMMAND "${flags}")
execute_process(COMMAND "${CXX}" -std=c++17 "${SOURCE}" -o "${PROGRAM}" ${flags} COMMAND_ERROR_IS_FATAL ANY)
