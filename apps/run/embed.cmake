# Writes a source file that holds a text file as a string constant:
#   cmake -DINPUT=<file> -DOUTPUT=<.cpp> -DNAME=<identifier> -P embed.cmake
# The header demoSession.h declares the constant.
file(READ "${INPUT}" text)
string(FIND "${text}" ")embedded\"" clash)
if(NOT clash EQUAL -1)
    message(FATAL_ERROR "${INPUT} holds the raw string's closing sequence")
endif()
file(WRITE "${OUTPUT}.tmp"
    "// Generated from ${INPUT}; edit that file instead.\n"
    "#include \"demoSession.h\"\n\n"
    "const char* const TesseraRun::${NAME} = R\"embedded(${text})embedded\";\n")
file(COPY_FILE "${OUTPUT}.tmp" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.tmp")
