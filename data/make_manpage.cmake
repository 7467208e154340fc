# Writes the man page quillon.1 from the program's own --help text, so that the two never differ.
#   cmake -DQUILLON=path/to/quillon -DVERSION=x.y.z -DOUT=quillon.1 -P make_manpage.cmake
execute_process(COMMAND ${QUILLON} --help OUTPUT_VARIABLE usage RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "quillon --help failed")
endif()
# roff: backslashes doubled, hyphens as minus signs, lines starting with . or ' protected.
string(REPLACE "\\" "\\\\" usage "${usage}")
string(REPLACE "-" "\\-" usage "${usage}")
string(REGEX REPLACE "\n([.'])" "\n\\\\&\\1" usage "${usage}")
file(WRITE ${OUT} ".TH QUILLON 1 \"\" \"Quillon ${VERSION}\" \"User Commands\"
.SH NAME
quillon \\- dialogue tools for the data files of The Elder Scrolls III: Morrowind
.SH SYNOPSIS
.B quillon
.I COMMAND
.RI [ ARGUMENTS ]
.br
.B quillon
.B \\-\\-version
.br
.B quillon\\-gui
.RI [ FILE ]
.SH DESCRIPTION
Quillon reads a whole TES3 data file (.esm, .esp, .ess, .esd), counts its records, writes it back
byte for byte, and exports, imports, checks and cleans its NPC dialogue.
.B quillon\\-gui
is the same tool as a window; a FILE given to it is opened at once.
Before any data file is replaced, every record about to be written is checked against its own
size words; damaged output is refused unless \\-\\-repair or \\-\\-force says otherwise.
.SH USAGE
.nf
${usage}.fi
.SH FILES
The window looks for the game's Data Files folder through QUILLON_DATA_FILES, Wine's
registry, a Steam library or OpenMW's openmw.cfg.
")
