// Reads all rows of a query through ODBC and counts them: odbc_rows CONNECTION QUERY.
#include "source/OdbcReader.h"

#include <cstdio>

int main(int argc, char** argv) {
    using namespace tavix::source;
    const auto text = ConnectionText::parse(argc == 3 ? argv[1] : "");
    const auto connection = text ? OdbcConnection::open("bench", *text, {}) : text.error();
    if (!connection) {
        std::fprintf(stderr, "%s\n", connection.error().text.c_str());
        return 1;
    }
    const auto table = DatabaseTable::resolve(**connection, {"", "", "", argv[2]});
    auto reader =
        table ? OdbcReader::open(**connection, table->rows(), table->columns(), table->columnNames()) : table.error();
    if (!reader) {
        std::fprintf(stderr, "%s\n", reader.error().text.c_str());
        return 1;
    }
    RowBlock block;
    std::size_t rows = 0;
    for (;;) {
        const auto more = (*reader)->read(block);
        if (!more || !*more)
            break;
        rows += block.rows;
    }
    std::printf("%zu\n", rows);
    return 0;
}
