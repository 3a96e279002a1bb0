# Writes a C++ source that defines embeddedFile, which gives the text of each of the files by its name without folder.
# cmake -DFILES=file,file,... -DOUTPUT=file -P EmbedText.cmake
string(REPLACE "," ";" paths "${FILES}")
set(code "#include \"c99/embedded.h\"\n\nnamespace blockhost::c99 {\n\n")
string(APPEND code "const char* embeddedFile(std::string_view name) noexcept\n{\n")
foreach(path IN LISTS paths)
  file(READ ${path} text)
  get_filename_component(name ${path} NAME)
  string(APPEND code "    if (name == \"${name}\")\n        return R\"embedded(${text})embedded\";\n")
endforeach()
string(APPEND code "    return nullptr;\n}\n\n}  // namespace blockhost::c99\n")
file(WRITE ${OUTPUT} "${code}")
