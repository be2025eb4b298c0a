// Switches the process to a locale with a decimal comma for a scope. Compiled by the build from comma.locale.
#pragma once

#include <clocale>
#include <cstdlib>
#include <string>

class CommaLocale {
  public:
    // folder: where the build has put it
    explicit CommaLocale(const char* folder) : before_(std::setlocale(LC_NUMERIC, nullptr)) {
        setenv("LOCPATH", folder, 1);
        for (const char* name : {"comma", "de_DE.UTF-8", "de_DE", "fr_FR.UTF-8"}) {
            if (std::setlocale(LC_NUMERIC, name) != nullptr) {
                break;
            }
        }
    }
    ~CommaLocale() { std::setlocale(LC_NUMERIC, before_.c_str()); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    bool works() const { return *std::localeconv()->decimal_point == ','; }

  private:
    std::string before_;
};
