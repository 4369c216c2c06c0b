// For the end of a unit that is nothing but public headers: none of them may bring a library that the program has not
// asked for, nor anything of a command line or a terminal.

#if defined(INCLUDE_NLOHMANN_JSON_HPP_) || defined(INCLUDE_NLOHMANN_JSON_FWD_HPP_)
#error "A public header includes a JSON library."
#endif

#if defined(CLI11_CPP14) || defined(_GETOPT_H)
#error "A public header includes an option parser."
#endif

#if defined(NCURSES_VERSION) || defined(_TERMIOS_H) || defined(_SYS_IOCTL_H)
#error "A public header includes a terminal."
#endif

#if defined(ZLIB_H) || defined(SQLITE3_H) || defined(_FASTCDR_CDR_H_) || defined(HEADER_PUGIXML_HPP)
#error "A public header includes a library for files."
#endif
