// Numbers from and to text, with exactly the runtime's answers.
#ifndef QXCORE_VARIANT_NUMBER_TEXT_H
#define QXCORE_VARIANT_NUMBER_TEXT_H

namespace qx {

// As sscanf: true if a number stood at the start, behind white space. A null text has none.
bool ScanNumber(const char* text, int& number);
bool ScanNumber(const char* text, unsigned& number);
bool ScanNumber(const char* text, double& number);
bool ScanNumber(const char* text, float& number);

// As Format: "%d", "%u", "%lg", "%g", in a new block of the default heap.
char* NewNumberText(int number);
char* NewNumberText(unsigned number);
char* NewNumberText(double number);
char* NewNumberText(float number);

}  // namespace qx

#endif
