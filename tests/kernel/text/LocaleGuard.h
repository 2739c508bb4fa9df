#pragma once

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <locale>
#include <string>

/// Numeric punctuation made up for a test.
class Punctuation : public std::numpunct<wchar_t> {
public:
    Punctuation(wchar_t point, wchar_t separator) : m_point(point), m_separator(separator) {}

protected:
    wchar_t do_decimal_point() const override { return m_point; }
    wchar_t do_thousands_sep() const override { return m_separator; }
    std::string do_grouping() const override { return "\3"; }

private:
    wchar_t m_point;
    wchar_t m_separator;
};

/// Makes a C++ locale the global one until the end of the scope. A locale without a name leaves
/// the C library's as it is.
class GlobalLocale {
public:
    explicit GlobalLocale(const std::locale& locale) : m_before(std::locale::global(locale)) {}
    GlobalLocale(const GlobalLocale&) = delete;
    GlobalLocale& operator=(const GlobalLocale&) = delete;
    ~GlobalLocale() { std::locale::global(m_before); }

private:
    std::locale m_before;
};

/// The classic locale with other numeric punctuation, until the end of the scope.
class GlobalPunctuation : public GlobalLocale {
public:
    GlobalPunctuation(wchar_t point, wchar_t separator)
        : GlobalLocale(std::locale(std::locale::classic(), new Punctuation(point, separator)))
    {
    }
};

/// Gives the C library's numbers a decimal comma until the end of the scope. The machine may have
/// no such locale installed; a small one of our own is compiled then.
class DecimalComma {
public:
    DecimalComma() { m_made = std::setlocale(LC_NUMERIC, "de_DE.UTF-8") != nullptr || _compiled(); }
    DecimalComma(const DecimalComma&) = delete;
    DecimalComma& operator=(const DecimalComma&) = delete;
    ~DecimalComma()
    {
        std::setlocale(LC_NUMERIC, "C");
        unsetenv("LOCPATH");
        std::filesystem::remove_all(m_folder);
    }

    bool made() const { return m_made; }

private:
    bool _compiled()
    {
        std::string folder = (std::filesystem::temp_directory_path() / "comma-XXXXXX").string();
        if (mkdtemp(folder.data()) == nullptr) {
            return false;
        }
        m_folder = folder;
        std::ofstream(m_folder / "source") << "LC_NUMERIC\ndecimal_point \",\"\n"
                                              "thousands_sep \".\"\ngrouping 3;3\n"
                                              "END LC_NUMERIC\n";
        const std::string command = "localedef -c -i " + (m_folder / "source").string() +
                                    " -f ANSI_X3.4-1968 " + (m_folder / "comma").string() +
                                    " >/dev/null 2>&1";
        // The other categories are missing on purpose, which is a warning and an exit status.
        [[maybe_unused]] const int status = std::system(command.c_str());
        setenv("LOCPATH", folder.c_str(), 1);
        return std::setlocale(LC_NUMERIC, "comma") != nullptr;
    }

    std::filesystem::path m_folder;
    bool m_made = false;
};
