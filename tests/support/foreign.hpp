// For the end of a unit with public headers only: these must not include a library that the program has not asked for,
// nor anything of a command line or a terminal.

#if defined(INCLUDE_NLOHMANN_JSON_HPP_) || defined(INCLUDE_NLOHMANN_JSON_FWD_HPP_)
#error "A public header includes a JSON library."
#endif

#if defined(CLI11_CPP14) || defined(_GETOPT_H)
#error "A public header includes an option parser."
#endif

#if defined(NCURSES_VERSION) || defined(_TERMIOS_H) || defined(_SYS_IOCTL_H)
#error "A public header includes a terminal."
#endif

#if defined(ZLIB_H) || defined(SQLITE3_H) || defined(_FASTCDR_CDR_H_) || defined(HEADER_PUGIXML_HPP) ||              \
    defined(LZ4F_H_09782039843) || defined(ZSTD_H_235446) || defined(YAML_H_62B23520_7C8E_11DE_8A39_0800200C9A66) || \
    defined(TOMLPLUSPLUS_H) || defined(NETTLE_SHA2_H_INCLUDED)
#error "A public header includes a library for files."
#endif
