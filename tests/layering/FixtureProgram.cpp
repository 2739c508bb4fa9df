// Breaks the rules for linked files, to show that they are checked.
int usedByTheFixture();

extern "C" {
int TarvelCocoaViewFixture = 0;
}

int main() { return usedByTheFixture() + TarvelCocoaViewFixture; }
