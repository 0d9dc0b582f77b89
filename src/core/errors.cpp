// The error reporter: the table of messages, the last error, and the pop-up.
#include "core/errors.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "core/status.h"
#include "orlune_ptk.h"
#include "platform/message_box.h"

namespace zel {
namespace {

constexpr size_t POPUP_LINE_SIZE = 496;

// Misspellings are kept: programs in the field compare these texts.
constexpr char ErrorTableText[] =
    "#0 no error\n"
    "#100 system error\n"
    "#101 memory full\n"
    "#102 memory error\n"
    "#200 bad image reference\n"
    "#201 image reference not specified\n"
    "#202 image reference not specified\n"
    "#300 bad image type\n"
    "#301 bad image type\n"
    "#302 bad image type\n"
    "#303 image(s) type incompatible\n"
    "#304 image(s) type incompatible\n"
    "#305 image(s) type incompatible\n"
    "#306 image(s) size incompatible\n"
    "#307 image(s) size incompatible\n"
    "#308 bad border size\n"
    "#309 bad border size\n"
    "#310 image type not supported\n"
    "#311 image type not supported\n"
    "#312 image type not supported\n"
    "#313 images type must be the same\n"
    "#400 unable to open driver\n"
    "#401 IO error\n"
    "#402 board not found\n"
    "#403 IO timeout\n"
    "#450 String cannot be NULL\n"
    "#500 bad file header\n"
    "#501 bad file type\n"
    "#502 color table error\n"
    "#503 invalid parameter\n"
    "#504 file already open for writing\n"
    "#505 file not found\n"
    "#506 too many files open\n"
    "#507 unspecified I/O error\n"
    "#508 access denied\n"
    "#509 file type not supported\n"
    "#510 unable to get info\n"
    "#511 unable to read data\n"
    "#512 unable to write data\n"
    "#513 end of file occured\n"
    "#514 bad file format\n"
    "#515 bad file operation (info, read, write)\n"
    "#516 file data type not supported\n"
    "#600 GUI initialization error\n"
    "#601 GUI unable to create window\n"
    "#602 GUI bad window id\n"
    "#698 image window doesn't exit\n"
    "#699 bad window attribute\n"
    "#700 bad number of classes\n"
    "#800 bad particle\n"
    "#801 bad number of measure\n"
    "#1001 kernel internal error\n"
    "#1103 DLL not found\n"
    "#1104 DLL access error\n"
    "#1200 bad ROI descriptor\n"
    "#1201 bad ROI global rectangle\n"
    "#2000 8 bits image expected\n"
    "#2001 16 bits image expected\n"
    "#2002 float image expected\n"
    "#2003 complex image expected\n"
    "#2004 RGB image expected\n"
    "#2100 bad complex plane\n"
    "#2314 image not big enough\n"
    "#3000 ROI Not a rectangle\n"
    "#3003 Barcode check character not valid\n"
    "#3004 Barcode: full ASCII not found\n"
    "#3005 Browser Not a Browser image\n"
    "#3006 Divided by zero\n"
    "#3009 Null pointer passed to function\n"
    "#3010 linear equations have linearly ralative coefficients\n"
    "#3011 complex roots of 2nd degreee equation\n"
    "#3030 no sufficient bars\n"
    "#3040 LCD no segments\n"
    "#3041 LCD bad match\n";

int32_t errorMode = ERROR_MODE_MESSAGE_BOX;
int32_t lastError = 0;
char ProcNameBuffer[ERROR_PROCEDURE_BYTES] = "";

}  // namespace

void ErrorMessage(int64_t number, char (&line)[MESSAGE_LINE_SIZE]) {
  char key[24];
  std::snprintf(key, sizeof(key), "#%" PRId64, number);
  // Only a line's first character is a "#", so the first match starts its line.
  const char* found = std::strstr(ErrorTableText, key);
  if (!found) {
    std::snprintf(line, sizeof(line), "%s Unknown error\n", key);
    return;
  }
  const auto length = static_cast<size_t>(std::strchr(found, '\n') - found) + 1;
  std::memcpy(line, found, length);
  line[length] = '\0';
}

}  // namespace zel

int32_t ZEL_ProcessError(const char* procedure, int32_t status) {
  using namespace zel;
  if (status == STATUS_OK) return 0;
  lastError = status < 0 ? status : -status;
  if (procedure) std::snprintf(ProcNameBuffer, sizeof(ProcNameBuffer), "%s", procedure);
  if (errorMode == ERROR_MODE_MESSAGE_BOX) {
    char message[MESSAGE_LINE_SIZE];
    ErrorMessage(-int64_t{lastError}, message);
    char text[POPUP_LINE_SIZE];
    std::snprintf(text, sizeof(text), "The procedure %s() returned the error \n #-%s",
                  ProcNameBuffer, message + 1);
    MessageBoxInUse().show("Orlune Error", text);
  }
  return lastError;
}

int32_t ZEL_SetErrorMode(int32_t mode) {
  zel::errorMode = mode > 0 ? ERROR_MODE_SILENT : ERROR_MODE_MESSAGE_BOX;
  return 0;
}

int32_t ZEL_GetErrorMode(void) {
  return zel::errorMode;
}

int32_t ZEL_GetLastError(char* procedure) {
  const int32_t error = zel::lastError;
  if (procedure) {
    if (error != 0) {
      std::memcpy(procedure, zel::ProcNameBuffer, std::strlen(zel::ProcNameBuffer) + 1);
    } else {
      procedure[0] = '\0';
    }
  }
  zel::lastError = 0;
  return error;
}
