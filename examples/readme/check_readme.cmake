# Fails unless README shows each program of FOLDER as it stands there.
file(READ ${README} readme)
foreach(program ${PROGRAMS})
  file(READ ${FOLDER}/${program}.cpp text)
  string(FIND "${readme}" "```cpp\n${text}```" position)
  if(position EQUAL -1)
    message(SEND_ERROR "README.md does not show examples/readme/${program}.cpp as it is")
  endif()
endforeach()
