# cmake -DOUT=... -DICONS=folder -P EmbedIcons.cmake: a source file that holds the drawings of icons.txt, by number.

file(STRINGS ${ICONS}/icons.txt lines REGEX "^[0-9]")
set(rows "")
foreach(line ${lines})
    string(REPLACE " " ";" parts ${line})
    list(GET parts 0 id)
    list(GET parts 1 name)
    file(READ ${ICONS}/${name}.svg svg)
    string(APPEND rows "    {${id}, R\"svg(${svg})svg\"},\n")
endforeach()
file(WRITE ${OUT} "#include \"windows/Icons.h\"

static constexpr struct {
    unsigned int id;
    const char* svg;
} ICONS[] = {
${rows}};

const char* FindIcon(unsigned int id)
{
    for (const auto& icon : ICONS)
        if (icon.id == id)
            return icon.svg;
    return nullptr;
}
")
