// The tables of the font library. Paths and file names are bytes (BLOB); IDs are never used twice.
//
//   workgroups   the system's fonts and the user's library, there from the first start
//   folders      what the user's library is made of; no folder lies in another one
//   files        one row per font file; `error` for one that is no usable font, `missing` when it
//                has gone from disk (its row stays, so that it comes back with its IDs)
//   fonts        one row per face
//   activations  who turned a file on: mode 1 automatic, by a process; 4 the user (process 0)
//   settings     words of the agent's own
#pragma once

#include <string>

namespace Nodrix {

class Database;

// Makes the tables where they are not there yet and sets up a connection that writes. False with a
// reason; also for a database of another schema, which is left as it is.
[[nodiscard]] bool PrepareSchema(Database& database, std::string& error);

}  // namespace Nodrix
