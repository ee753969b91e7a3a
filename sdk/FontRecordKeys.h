/* The keys of a font record: what a document, the font manager and a saved file say about one font.
 * Scalars are strings: numbers in decimal, flags "1" and "0". */
#ifndef SDK_FONT_RECORD_KEYS_H
#define SDK_FONT_RECORD_KEYS_H

#define kFP_PostScriptNameKey "PostScriptName"
#define kFP_KindKey "FontKind"
#define kFP_FoundryKey "Foundry"
#define kFP_VersionKey "Version"
#define kFP_KerningChecksumKey "KerningChecksum"
#define kFP_ChecksumKey "Checksum" /* the 1.1 checksum */
#define kFP_Faceprint_1_2_Key "Faceprint_1.2_Checksum"
#define kFP_OutlineFileSizeKey "OutlineFileSize"
#define kFP_OutlineFileNameKey "OutlineFileName"
#define kFP_FamilyKey "Family"
#define kFP_AssignedFamilyGroupIDKey "AssignedFamilyID"
#define kFP_AssignedFamilyGroupNameKey "AssignedFamilyName"
#define kFP_PrinterFontKey "PrinterFont"
#define kFP_KeywordsKey "Keywords"
#define kFP_PathKey "Path"
#define kFP_SourceDocumentName "SourceDocumentName"
#define kFP_SubDocumentsWithFontKey "SubDocumentsWithFont" /* array of strings */
#define kFP_PossibleReplacementsKey "PossibleReplacements" /* array of font records */
#define kFP_DatabaseIDKey "DatabaseID"                     /* 0 or absent: no database font */
#define kFP_MatchedFontKey "MatchedFont"                   /* font record */
#define kFP_ActivationStateKey "ActivationStatus"
#define kFP_WorkgroupIDKey "WorkgroupID"
#define kFP_WorkgroupNameKey "WorkgroupName"
#define kFP_WorkgroupTypeKey "WorkgroupType"
#define kFP_IsActiveKey "IsActive"
#define kFP_IsTempKey "IsTemp"
#define kFP_IsVaultKey "IsVault"
#define kFP_IsSystemKey "IsSystem"
#define kFP_IsLocalKey "IsLocal"
#define kFP_IsAutoActivatedKey "IsAutoActivated"

/* Values of kFP_KindKey. */
#define kFP_Kind_OpenType "OpenType"
#define kFP_Kind_Postscript "Postscript"
#define kFP_Kind_TrueType "TrueType"
#define kFP_Kind_OpenTypePS "OpenType - PS"
#define kFP_Kind_OpenTypeTT "OpenType - TT"
#define kFP_Kind_PostscriptMM "PostScript - MM"
#define kFP_Kind_PostscriptMultipleMaster "PostScript - Multiple Master"

/* Workgroup types. */
enum {
  kWorkgroupType_AllServerFonts = 0,
  kWorkgroupType_ServerBasedPersonal = 2,
  kWorkgroupType_LocalPersonal = 3,
  kWorkgroupType_System = 4,
  kWorkgroupType_Google = 8,
  kWorkgroupType_Typekit = 9
};

#endif
