# Turns text files into a C++ source that holds them: cmake -D OUT=FILE -D IN="NAME=FILE;..." -P embed.cmake
# Each becomes "const std::string_view NAME", declared in view/page_files.h. Pieces are shorter than what every compiler takes.

set(source "#include \"view/page_files.h\"\n\nnamespace orlo::view {\n")
foreach(entry IN LISTS IN)
  string(REGEX MATCH "^([^=]+)=(.*)$" matched "${entry}")
  set(name ${CMAKE_MATCH_1})
  file(READ "${CMAKE_MATCH_2}" text)
  string(LENGTH "${text}" length)
  string(APPEND source "\nconst std::string_view ${name} =\n")
  set(at 0)
  while(at LESS length)
    string(SUBSTRING "${text}" ${at} 8000 piece)
    string(APPEND source "R\"orlo_text(${piece})orlo_text\"\n")
    math(EXPR at "${at} + 8000")
  endwhile()
  string(APPEND source ";\n")
endforeach()
file(WRITE "${OUT}" "${source}\n} // namespace orlo::view\n")
