#include "tests/support/sofa_file.h"

#include <netcdf.h>

#include <stdexcept>

namespace sofa {

namespace {

void check(int error) {
    if (error != NC_NOERR) {
        throw std::runtime_error(nc_strerror(error));
    }
}

// SOFA files are netCDF-4 files of named dimensions.
class File {
  public:
    File(const std::string& path, bool compressed) : compressed_(compressed) {
        check(nc_create(path.c_str(), NC_NETCDF4 | NC_CLOBBER, &id_));
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { nc_close(id_); }

    int dimension(const char* name, size_t size) {
        int dimension = 0;
        check(nc_def_dim(id_, name, size, &dimension));
        return dimension;
    }
    void text(const char* name, const std::string& value, int variable = NC_GLOBAL) {
        check(nc_put_att_text(id_, variable, name, value.size(), value.data()));
    }
    int numbers(const char* name, const std::vector<int>& dimensions, const std::vector<double>& values) {
        int variable = 0;
        check(nc_def_var(id_, name, NC_DOUBLE, int(dimensions.size()), dimensions.data(), &variable));
        if (compressed_) {
            check(nc_def_var_deflate(id_, variable, 1, 1, 9));
        }
        check(nc_put_var_double(id_, variable, values.data()));
        return variable;
    }

  private:
    bool compressed_;
    int id_ = 0;
};

void write_attributes(File& file, const Content& content) {
    const std::pair<const char*, std::string> attributes[] = {
        {"Conventions", "SOFA"},
        {"Version", "1.0"},
        {"SOFAConventions", content.convention},
        {"SOFAConventionsVersion", "1.0"},
        {"DataType", content.dataType},
        {"RoomType", "free field"},
        {"Title", content.title},
        {"AuthorContact", "nobody"},
        {"Organization", "none"},
        {"License", "free"},
        {"Comment", content.comment},
    };
    for (const auto& [name, value] : attributes) {
        file.text(name, value);
    }
}

std::vector<double> responses(const Content& content) {
    std::vector<double> values;
    for (const auto& ears : content.head.responses) {
        for (size_t receiver = 0; receiver < content.receivers; ++receiver) {
            values.insert(values.end(), ears[receiver % 2].begin(), ears[receiver % 2].end());
        }
    }
    return values;
}

std::vector<double> positions(const Content& content) {
    std::vector<double> values;
    for (const auto& direction : content.head.directions) {
        values.insert(values.end(), {direction.azimuth, direction.elevation, 1.5});
    }
    return values;
}

}  // namespace

void write(const std::string& path, const Content& content) {
    File file(path, content.compressed);
    write_attributes(file, content);
    const int I = file.dimension("I", 1), C = file.dimension("C", 3),
              R = file.dimension("R", content.receivers), E = file.dimension("E", 1),
              N = file.dimension("N", content.head.responses[0][0].size()),
              M = file.dimension("M", content.head.responses.size());
    const auto variable = [&](const char* name, const std::vector<int>& dimensions,
                              const std::vector<double>& values, const char* type, const char* units) {
        if (name == content.without) {
            return;
        }
        const int id = file.numbers(name, dimensions, values);
        if (type != nullptr) {
            file.text("Type", type, id);
        }
        if (units != nullptr) {
            file.text("Units", units, id);
        }
    };
    variable("ListenerPosition", {I, C}, {0, 0, 0}, "cartesian", "metre");
    variable("ReceiverPosition", {R, C, I}, std::vector<double>(3 * content.receivers), "cartesian", "metre");
    variable("SourcePosition", {M, C}, positions(content), content.positionType.c_str(),
             content.positionUnits.c_str());
    variable("EmitterPosition", {E, C, I}, {0, 0, 0}, "cartesian", "metre");
    variable("ListenerUp", {I, C}, {0, 0, 1}, nullptr, nullptr);
    variable("ListenerView", {I, C}, content.view, "cartesian", "metre");
    variable("Data.IR", {M, R, N}, responses(content), nullptr, nullptr);
    variable("Data.SamplingRate", {I}, {content.head.rateHz}, nullptr, "hertz");
    variable("Data.Delay", {I, R}, std::vector<double>(content.receivers), nullptr, nullptr);
}

}  // namespace sofa
