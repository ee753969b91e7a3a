/* What a plain C caller of the border does with a record. */
#include "sdk/PropertyList.h"

PLDictionaryRef MakeRecordInC(void);

/* A record of every kind, and a list of every kind; the caller has its one count. */
PLDictionaryRef MakeRecordInC(void) {
  PLArrayRef list = PLArrayCreate();
  PLDictionaryRef inner = PLDictionaryCreate();
  PLDictionarySetReal(inner, "size", 1.5);
  PLArrayAppendReal(list, -0.5);
  PLArrayAppendBool(list, true);
  PLArrayAppendData(list, "\0\377", 2);
  PLArrayAppendNull(list);
  PLArrayRef empty = PLArrayCreate();
  PLArrayAppendArray(list, empty);
  PLArrayRelease(empty);
  PLArrayAppendDictionary(list, inner);
  PLArrayAppendInteger(list, -5);
  PLArrayAppendString(list, "one\0two", 7);
  PLArrayMove(list, 7, 0); /* an insert */

  PLDictionaryRef record = PLDictionaryCreate();
  PLDictionarySetString(record, "name", "Alpha", 5);
  PLDictionarySetBool(record, "flag", true);
  PLDictionarySetInteger(record, "number", INT64_MIN);
  PLDictionarySetData(record, "data", "abc", 3);
  PLDictionarySetNull(record, "null");
  PLDictionarySetArray(record, "list", list);
  PLDictionarySetDictionary(record, "inner", inner);
  PLArrayRelease(list);
  PLDictionaryRelease(inner);
  return record;
}
