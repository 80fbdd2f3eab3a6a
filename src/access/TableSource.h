#pragma once

#include <string>
#include <vector>

namespace tavix {

/// Where the rows of a table came from and how they were read: what a job needs to read the table again.
struct TableSource {
    struct File {
        std::string path;     ///< where it is now, as far as is known
        char delimiter = 0;   ///< 0: not recorded for this file, or its lines were not split
        std::string encoding; ///< empty: not recorded for this file
    };

    std::vector<File> files; ///< none for a table of a database
    bool hasHeader = true;   ///< of the files
    char quote = '"';        ///< of the files; 0: none
    std::string connection;  ///< how the database is reached, without user and password; empty: no database
    std::string user;        ///< the database user in the job; empty: none
};

} // namespace tavix
