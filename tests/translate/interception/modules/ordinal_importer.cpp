extern "C" __declspec(dllimport) int NumberedFunction();

extern "C" __declspec(dllexport) int CallByOrdinal() {
    return NumberedFunction();
}
