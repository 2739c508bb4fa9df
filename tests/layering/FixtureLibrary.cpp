// Stands for a library that the program under test must not need.
int usedByTheFixture();
int usedByTheFixture() { return 0; }
