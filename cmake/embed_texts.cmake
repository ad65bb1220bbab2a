# Writes a source that defines texts as constants of a header:
#
#   cmake -D OUTPUT=page_texts.cpp -D HEADER=cli/page_texts.h
#         -D "TEXTS=kPageStyle=/path/page.css;..." -P embed_texts.cmake
set(source "#include \"${HEADER}\"\n\nnamespace marrowpress {\n")
foreach(entry IN LISTS TEXTS)
    string(REGEX MATCH "^([^=]+)=(.+)$" matched "${entry}")
    set(name ${CMAKE_MATCH_1})
    file(READ "${CMAKE_MATCH_2}" text)
    string(APPEND source "\nconst std::string_view ${name} = R\"embedded(${text})embedded\";\n")
endforeach()
string(APPEND source "\n}  // namespace marrowpress\n")
file(WRITE "${OUTPUT}" "${source}")
