# Writes a source with the .inc files that it includes, and those that they include, in the place of their #include lines.
# cmake -DSOURCE=file -DFOLDER=folder of the .inc files -DOUTPUT=file -P FlattenIncludes.cmake
file(READ ${SOURCE} text)
set(pattern "#include \"[A-Za-z0-9_]+\\.inc\"\n")
while(text MATCHES "${pattern}")
  set(line "${CMAKE_MATCH_0}")
  string(REGEX REPLACE "#include \"(.*)\"\n" "\\1" name "${line}")
  file(READ ${FOLDER}/${name} part)
  string(REPLACE "${line}" "${part}" text "${text}")
endwhile()
file(WRITE ${OUTPUT} "${text}")
