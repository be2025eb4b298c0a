#include "tools/zoq/tuning/key_names.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

#include "tools/zoq/tuning/setting_docs.h"

namespace zoq {

namespace {

using How = KeyGuess::How;

bool name_character(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

std::string lowered(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return result;
}

std::string digits_of(std::string_view text) {
    std::string result;
    std::copy_if(text.begin(), text.end(), std::back_inserter(result),
                 [](char c) { return c >= '0' && c <= '9'; });
    return result;
}

constexpr size_t kLongestName = 32;

// What names are compared by: lower case, and the bands' kilohertz written as in the keys ("1000hz" is "1khz").
std::string plain_name(std::string_view text) {
    std::string name = lowered(text);
    const size_t thousand = name.find("000hz");
    if (thousand != std::string::npos && thousand > 0 && name[thousand - 1] >= '1' &&
        name[thousand - 1] <= '9') {
        name.replace(thousand, 3, "k");
    }
    return name;
}

// The keys in lower case, empty where a dialect has none: looked at for every word of a text.
struct LowerKeys {
    std::string file, string, any;
};
const LowerKeys& lower_keys(int row) {
    static const std::vector<LowerKeys> kKeys = [] {
        std::vector<LowerKeys> keys;
        for (int each = 0; each < android::kSettings; ++each) {
            const char* file = spelling(each, Dialect::kFile);
            const char* string = spelling(each, Dialect::kString);
            keys.push_back({lowered(file != nullptr ? file : ""), lowered(string != nullptr ? string : ""),
                            lowered(any_spelling(each))});
        }
        return keys;
    }();
    return kKeys[static_cast<size_t>(row)];
}

// Edits between two texts of at most kLongestName letters, with two neighbours swapped counting as one.
size_t edit_distance(const std::string& a, const std::string& b) {
    std::array<std::array<size_t, kLongestName + 1>, kLongestName + 1> d;
    for (size_t i = 0; i <= a.size(); ++i) {
        for (size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                d[i][j] = i + j;
                continue;
            }
            const size_t replaced = d[i - 1][j - 1] + (a[i - 1] != b[j - 1] ? 1 : 0);
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
            }
        }
    }
    return d[a.size()][b.size()];
}

// How many edits a name may be away: more for the longer ones.
size_t allowed_edits(const std::string& key) {
    return 1 + key.size() / 5;
}

How compare_with(int row, std::string_view core, Dialect dialect) {
    const char* here = spelling(row, dialect);
    const char* there = spelling(row, dialect == Dialect::kFile ? Dialect::kString : Dialect::kFile);
    if (here == nullptr) {
        return How::kAbsent;
    }
    if (core == here) {
        return How::kExact;
    }
    return there != nullptr && core == there ? How::kOtherDialect : How::kLetterCase;
}

}  // namespace

const char* spelling(int row, Dialect dialect) {
    const android::Setting& setting = android::settings()[row];
    return dialect == Dialect::kFile ? setting.fileKey : setting.stringKey;
}

const char* any_spelling(int row) {
    const char* text = spelling(row, Dialect::kString);
    return text != nullptr ? text : spelling(row, Dialect::kFile);
}

int find_exact(std::string_view text, Dialect dialect) {
    for (int row = 0; row < android::kSettings; ++row) {
        const char* key = spelling(row, dialect);
        if (key != nullptr && text == key) {
            return row;
        }
    }
    return -1;
}

int find_any_case(std::string_view text) {
    if (text.empty() || text.size() > kLongestName) {
        return -1;
    }
    const std::string wanted = lowered(text);
    for (int row = 0; row < android::kSettings; ++row) {
        if (wanted == lower_keys(row).string || wanted == lower_keys(row).file) {
            return row;
        }
    }
    return -1;
}

bool is_near(std::string_view text, std::string_view name) {
    const std::string wanted = lowered(text), whole = lowered(name.substr(0, kLongestName));
    return wanted.size() >= 3 && wanted.size() <= kLongestName &&
           std::min(edit_distance(wanted, whole), edit_distance(wanted, whole.substr(0, wanted.size()))) <=
               1 + wanted.size() / 4;
}

std::optional<Nearest> nearest_key(std::string_view text) {
    const std::string wanted = plain_name(text.substr(0, kLongestName + 1));
    Nearest best;
    for (int row = 0; row < android::kSettings; ++row) {
        const std::string& key = lower_keys(row).any;
        const size_t allowed = allowed_edits(key);
        if (wanted.size() > kLongestName || wanted.size() + allowed < key.size() ||
            key.size() + allowed < wanted.size()) {
            continue;
        }
        const size_t edits = edit_distance(wanted, key);
        if (edits <= allowed && (best.row < 0 || edits < best.edits)) {
            best = {row, edits, true, digits_of(wanted) == digits_of(key)};
        } else if (edits == best.edits) {
            best.unique = false;
        }
    }
    return best.row >= 0 ? std::optional(best) : std::nullopt;
}

ClosestKey closest_key(std::string_view text, std::optional<Dialect> dialect) {
    const std::string wanted = plain_name(text.substr(0, kLongestName));
    const auto distance = [&wanted](int row) {
        const std::string& key = lower_keys(row).any;
        const bool inside = !wanted.empty() && key.find(wanted) != std::string::npos;
        const bool meant = lowered(setting_doc(row).meaning).find(wanted) != std::string::npos;
        return inside ? 0 : meant ? 1 : 1 + edit_distance(wanted, key);
    };
    ClosestKey best;
    size_t least = 0;
    for (int row = 0; row < android::kSettings; ++row) {
        if (dialect && spelling(row, *dialect) == nullptr) {
            continue;
        }
        const size_t far = distance(row);
        if (best.row < 0 || far < least) {
            best.row = row;
            least = far;
        }
    }
    best.likely = wanted.size() >= 3 && least <= std::max<size_t>(1, wanted.size() / 2);
    return best;
}

std::string unknown_key(std::string_view text) {
    return shown(text) + " is no key; did you mean " + any_spelling(closest_key(text).row) + "?";
}

KeyGuess guess_key(std::string_view text, Dialect dialect) {
    const auto begin = std::find_if(text.begin(), text.end(), name_character);
    const auto end = std::find_if_not(begin, text.end(), name_character);
    KeyGuess guess;
    guess.prefix.assign(text.begin(), begin);
    guess.core.assign(begin, end);
    guess.suffix.assign(end, text.end());

    guess.row = find_any_case(guess.core);
    if (guess.row >= 0) {
        guess.how = compare_with(guess.row, guess.core, dialect);
        if (guess.how == How::kExact && guess.glued()) {
            guess.how = How::kGlued;
        }
    } else if (const std::optional<Nearest> near = nearest_key(guess.core)) {
        guess.how = How::kNear;
        guess.row = near->row;
        guess.nearest = *near;
    }
    return guess;
}

std::string shown(std::string_view text) {
    constexpr size_t kLongest = 60;
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string result = "'";
    for (const char c : text.substr(0, kLongest)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F) {
            result += c;
        } else {
            result += {'\\', 'x', kHex[byte >> 4], kHex[byte & 15]};
        }
    }
    return result + (text.size() > kLongest ? "...'" : "'");
}

}  // namespace zoq
