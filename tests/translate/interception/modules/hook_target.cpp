// A library whose function others import by number, and one that forwards to the system's.
extern "C" int NumberedFunction() {
    return 7;
}
