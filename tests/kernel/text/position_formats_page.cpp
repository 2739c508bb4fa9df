// Writes docs/position-formats.md to the file named on the command line.

#include "PositionFormatsPage.h"

#include <cstdio>
#include <fstream>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: position_formats_page <file>\n", stderr);
        return 2;
    }
    std::ofstream out(argv[1], std::ios::binary);
    out << positionFormatsPage() << std::flush;
    return out ? 0 : 1;
}
