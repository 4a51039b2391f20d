# Fails unless the program stands in the README to the letter.
file(READ "${README}" readme)
file(READ "${PROGRAM}" program)
string(FIND "${readme}" "${program}" position)
if(position EQUAL -1)
  message(FATAL_ERROR "the first program of the README is not ${PROGRAM}")
endif()
