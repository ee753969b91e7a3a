#include "tests/sdk/PropertyListFromC.h"

PLArrayRef MakeFontsInC(void) {
  PLArrayRef names = PLArrayCreate();
  PLArrayAppendString(names, "one\0two", 7);
  PLArrayAppendInteger(names, -5);

  PLDictionaryRef inner = PLDictionaryCreate();
  PLDictionarySetReal(inner, "size", 1.5);

  PLDictionaryRef record = PLDictionaryCreate();
  PLDictionarySetString(record, "name", "Alpha", 5);
  PLDictionarySetBool(record, "flag", true);
  PLDictionarySetInteger(record, "number", INT64_MIN);
  PLDictionarySetArray(record, "names", names);
  PLDictionarySetDictionary(record, "inner", inner);
  PLArrayRelease(names);
  PLDictionaryRelease(inner);

  PLArrayRef fonts = PLArrayCreate();
  PLArrayAppendDictionary(fonts, record);
  PLDictionaryRelease(record);
  return fonts;
}

PLDictionaryRef MakeEveryKindInC(void) {
  PLArrayRef list = PLArrayCreate();
  PLArrayAppendReal(list, -0.5);
  PLArrayAppendBool(list, true);
  PLArrayAppendData(list, "\0\377", 2);
  PLArrayAppendNull(list);
  PLArrayRef inner = PLArrayCreate();
  PLArrayAppendArray(list, inner);
  PLArrayAppendString(list, "first", 5);
  PLArrayMove(list, 5, 0); /* an insert */
  PLArrayRelease(inner);

  PLDictionaryRef record = PLDictionaryCreate();
  PLDictionarySetData(record, "data", "abc", 3);
  PLDictionarySetNull(record, "null");
  PLDictionarySetArray(record, "list", list);
  PLArrayRelease(list);
  return record;
}
