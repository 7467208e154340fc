#pragma once
// The record structures of a TES3 data file, one header per family. Each keeps its record header
// words and, for every sub-record the program knows, the sub-record's size word beside its value,
// so that a record is written back exactly as it was read. Texts are the file's bytes, never
// decoded.
#include "records/types_actors.h"
#include "records/types_cell.h"
#include "records/types_dialogue.h"
#include "records/types_game_data.h"
#include "records/types_header.h"
#include "records/types_items.h"
