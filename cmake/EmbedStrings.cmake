# cmake -DOUT=... -DENGLISH=... -DFRENCH=... -P EmbedStrings.cmake: a source file that holds the string tables' bytes.

set(text "#include <string_view>\n\n")
foreach(language english french)
    string(TOUPPER ${language} file)
    file(READ ${${file}} bytes HEX)
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "\\\\x\\1" bytes "${bytes}")
    string(REGEX REPLACE "((\\\\x..)(\\\\x..)(\\\\x..)(\\\\x..)(\\\\x..)(\\\\x..)(\\\\x..)(\\\\x..))" "\\1\"\n    \"" bytes "${bytes}")
    string(APPEND text "static constexpr char s_${language}[] =\n    \"${bytes}\";\n"
                       "extern const std::string_view g_${language}Strings;\n"
                       "const std::string_view g_${language}Strings(s_${language}, sizeof s_${language} - 1);\n\n")
endforeach()
file(WRITE ${OUT} "${text}")
