// In place of head_file.cpp where libmysofa is missing.
#include "tables/head_file.h"

namespace zoq::tables {

Head read_head(const std::string& path) {
    throw HeadError("cannot read " + path +
                    ": built without libmysofa; install libmysofa-dev, configure and build again");
}

}  // namespace zoq::tables
