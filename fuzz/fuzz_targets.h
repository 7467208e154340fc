#pragma once
#include <cstddef>
#include <cstdint>

namespace quillon::fuzz {

// Each takes arbitrary bytes and runs one part of the program on them; any crash, hang or
// sanitizer report is a fault. The libFuzzer targets call these, and the test suite replays
// every input kept under fuzz/regressions/.

// Reads the bytes as a data file, mapped as the command line maps one (keeping unknown records),
// then writes the store back.
void read(const std::uint8_t* data, std::size_t size);
// Imports the bytes as a dialogue text file into a small fixed store.
void importText(const std::uint8_t* data, std::size_t size);
// Cleans the bytes as responses with options taken from the first two bytes.
void cleanup(const std::uint8_t* data, std::size_t size);
// Reads the bytes as a PO file, as a script checked against a load order known whole, and as a
// response's words for the spelling check.
void texts(const std::uint8_t* data, std::size_t size);
// Reads the bytes as a mapped data file and lists its NPCs for a cell text taken from the first
// byte.
void npcList(const std::uint8_t* data, std::size_t size);
// Splits the bytes at "|FILE|" into a plugin and the masters A.esm and B.esm beside it, and runs
// the command line's check, loops and load-order on the plugin, its masters read.
void loadOrder(const std::uint8_t* data, std::size_t size);
// Reads the bytes as an openmw.cfg and asks it for its folders and settings.
void openmwConfig(const std::uint8_t* data, std::size_t size);

} // namespace quillon::fuzz
