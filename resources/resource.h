// Resource ids of the plug-in: dialog templates, their controls and the bitmaps.
//
// Included by the resource scripts and by the page code, so it holds nothing but #defines.
// The numbers are fixed: the rendering side and older builds of the driver know them, and several
// numbers are reused by different templates with different meanings, so every control is named
// after its template.
//
// Prefixes by control kind:
//   IDD_   dialog template            IDB_   push button
//   IDC_   drop-down list (combo)     IDL_   list box
//   IDE_   edit                       IDX_   check box
//   IDR_   radio button               IDSB_  vertical scroll bar used as an up-down control
//   IDTB_  trackbar                   IDG_   group box
//   IDT_   visible static text        IDF_   static frame (drawing area)
//   IDT_HIDDEN_  invisible static whose text the code reads with GetWindowTextW (localised
//                list entries, replacement captions and message texts)
//   IDBM_  bitmap
// Names the driver's log lines use (IDC_BARCODE_NAME, IDC_THRESHOLD_SLIDER, ...) are kept as
// aliases so that log texts and code agree.
#pragma once

#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif

// ---------------------------------------------------------------------------------------------
// Dialog templates
#define IDD_DOCSETTINGS                 112   // page "Document Settings"
#define IDD_LAYOUT                      113   // page "Layout"
#define IDD_NVIMAGE                     114   // page "NV Image"
#define IDD_UTILITY                     115   // page "Utility"
#define IDD_BARCODE                     119   // page "Barcode"
#define IDD_BARCODE_1D_PROPERTY         125   // modal "Barcode Setting"
#define IDD_ABOUT                       133   // device page "Version"
#define IDD_USER_PAPER                  153   // modal "User Defined Paper Size"
#define IDD_DITHER                      157   // page "Dithering"
#define IDD_BARCODE_2D_PROPERTY         174   // modal "2D-Code Setting"
#define IDD_PRINTER_SETTINGS            193   // device page "Printer Settings"
#define IDD_DITHER_ADVANCED             212   // modal "Dither Advanced"
#define IDD_DLG_DITHER_ADVANCED         IDD_DITHER_ADVANCED

// ---------------------------------------------------------------------------------------------
// Bitmaps
#define IDBM_ABOUT_LOGO                 117   // About page hook; not shipped
#define IDBM_ABOUT_LOGO_2000            129   // About page hook; not shipped
#define IDBM_ABOUT_LOGO_XP              131   // About page hook; not shipped
#define IDBM_DITHER_SAMPLE              161   // preview picture of the Dithering page

// ---------------------------------------------------------------------------------------------
// Template 113, Layout page
#define IDX_LAYOUT_CROP_TOP             1004
#define IDX_LAYOUT_CROP_BOTTOM          1005
#define IDX_LAYOUT_CROP_LEFT            1006
#define IDC_LAYOUT_PAPER_SIZE           1007
#define IDE_LAYOUT_CROP_TOP             1008
#define IDE_LAYOUT_CROP_BOTTOM          1009
#define IDX_LAYOUT_REDUCTION            1010
#define IDX_LAYOUT_INTERPOLATION        1011
#define IDX_LAYOUT_CROP_RIGHT           1012
#define IDE_LAYOUT_CROP_LEFT            1013
#define IDE_LAYOUT_CROP_RIGHT           1014
#define IDSB_LAYOUT_CROP_TOP            1015
#define IDSB_LAYOUT_CROP_BOTTOM         1016
#define IDSB_LAYOUT_CROP_LEFT           1017
#define IDSB_LAYOUT_CROP_RIGHT          1018
#define IDT_HIDDEN_LAYOUT_RECEIPT       1020  // paper type item 0
#define IDT_HIDDEN_LAYOUT_TICKET        1021  // paper type item 1
#define IDT_HIDDEN_LAYOUT_USER_RATE     1023  // rate item 4, "User Defined"
#define IDR_LAYOUT_ROTATE_0             1024
#define IDR_LAYOUT_PORTRAIT             1025
#define IDR_LAYOUT_ROTATE_90            1029
#define IDR_LAYOUT_LANDSCAPE            1030
#define IDR_LAYOUT_ROTATE_180           1033
#define IDR_LAYOUT_BARCODE_KEEP         1034  // "Disable reducing barcode"
#define IDR_LAYOUT_ROTATE_270           1037
#define IDC_LAYOUT_PAPER_TYPE           1038
#define IDB_LAYOUT_USER_PAPER           1039  // "..."
#define IDE_LAYOUT_COPIES               1040
#define IDSB_LAYOUT_COPIES              1041
#define IDR_LAYOUT_BARCODE_REDUCE       1042  // "Enable reducing barcode"
#define IDC_LAYOUT_RATE                 1043
#define IDE_LAYOUT_RATE                 1044
#define IDT_LAYOUT_PERCENT              1083  // "%" beside the rate edit
#define IDT_HIDDEN_LAYOUT_UNIT_PIXEL    1084  // crop unit item 1
#define IDT_HIDDEN_LAYOUT_UNIT_MM       1085  // crop unit item 0
#define IDC_LAYOUT_CROP_LEFT_UNIT       1086
#define IDC_LAYOUT_CROP_RIGHT_UNIT      1087
#define IDC_LAYOUT_CROP_TOP_UNIT        1088
#define IDC_LAYOUT_CROP_BOTTOM_UNIT     1089
#define IDT_HIDDEN_LAYOUT_UNIT_MARGIN   1090  // crop unit item 2

// ---------------------------------------------------------------------------------------------
// Template 153, user-defined paper dialog
#define IDE_PAPER_NAME                  1042
#define IDE_PAPER_WIDTH                 1043
#define IDE_PAPER_LENGTH                1044
#define IDSB_PAPER_WIDTH                1045
#define IDSB_PAPER_LENGTH               1046
#define IDB_PAPER_DELETE                1047
#define IDB_PAPER_SAVE                  1048
#define IDB_PAPER_CLOSE                 1049
#define IDL_PAPER_FORMS                 1050
#define IDT_HIDDEN_PAPER_REFUSED        1054  // message: name can not be registered
#define IDT_HIDDEN_PAPER_UPDATE         1055  // question: update the paper size?
#define IDT_HIDDEN_PAPER_ERROR          1056  // message box caption
#define IDT_HIDDEN_PAPER_QUESTION       1057  // message box caption
#define IDT_HIDDEN_PAPER_DEFAULT_NAME   1058  // default name, never saved
#define IDT_HIDDEN_PAPER_IMAGE_WIDTH    1059  // swapped with IDT_PAPER_WIDTH_LABEL
#define IDX_PAPER_IMAGE_WIDTH           1088  // "Based on Image Width"
#define IDT_PAPER_WIDTH_LABEL           1089  // "Paper Width : " or, swapped, "Image Width :"

// ---------------------------------------------------------------------------------------------
// Template 112, Document Settings page
#define IDE_DOC_LINE_FEEDS              1001
#define IDX_DOC_DRAWER2_AFTER           1006
#define IDX_DOC_DRAWER1_AFTER           1009
#define IDR_DOC_CUT_NONE_PARTIAL        1011  // "Page / Job : No Cut / Partial Cut"
#define IDE_DOC_START_DOC               1012
#define IDX_DOC_BEEP_AFTER              1015
#define IDR_DOC_CUT_PARTIAL_PARTIAL     1019  // "Page / Job : Partial Cut / Partial Cut"
#define IDE_DOC_START_PAGE              1025
#define IDX_DOC_DRAWER1_BEFORE          1027
#define IDX_DOC_DRAWER2_BEFORE          1032
#define IDE_DOC_END_PAGE                1034
#define IDX_DOC_BEEP_BEFORE             1036
#define IDR_DOC_CUT_NONE_NONE           1038  // "Page / Job : No Cut / No Cut"
#define IDE_DOC_END_DOC                 1044
#define IDSB_DOC_DRAWER1_AFTER          1053
#define IDSB_DOC_DRAWER2_AFTER          1054
#define IDE_DOC_DRAWER1_AFTER           1055
#define IDSB_DOC_BEEP_AFTER             1056
#define IDT_DOC_DRAWER1_AFTER_UNIT      1057
#define IDT_DOC_DRAWER2_AFTER_UNIT      1058
#define IDT_DOC_DRAWER1_BEFORE_UNIT     1059
#define IDT_DOC_DRAWER2_BEFORE_UNIT     1060
#define IDE_DOC_DRAWER2_AFTER           1061
#define IDE_DOC_BEEP_AFTER              1062
#define IDE_DOC_DRAWER1_BEFORE          1063
#define IDE_DOC_DRAWER2_BEFORE          1064
#define IDSB_DOC_DRAWER1_BEFORE         1065
#define IDSB_DOC_DRAWER2_BEFORE         1066
#define IDT_DOC_BEEP_AFTER_UNIT         1067
#define IDE_DOC_BEEP_BEFORE             1068
#define IDT_DOC_BEEP_BEFORE_UNIT        1069
#define IDSB_DOC_BEEP_BEFORE            1070
#define IDSB_DOC_LINE_FEEDS             1071
#define IDT_HIDDEN_DOC_TIMES            1072  // unit "[ times ]" of the alarm model
#define IDT_HIDDEN_DOC_ALARM_END_DOC    1087  // caption for IDX_DOC_BEEP_AFTER on the alarm model
#define IDT_HIDDEN_DOC_ALARM_END_PAGE   1088  // caption for IDX_DOC_BEEP_BEFORE on the alarm model

// ---------------------------------------------------------------------------------------------
// Template 114, NV Image page
#define IDR_NV_GRAPHIC                  1016  // "NV Graphic"
#define IDT_HIDDEN_NV_NONE              1017  // list item 0
#define IDC_NV_START_DOC                1020
#define IDC_NV_START_PAGE               1030
#define IDC_NV_END_PAGE                 1040
#define IDC_NV_END_DOC                  1042
#define IDR_NV_BITMAP                   1049  // "NV Bitmap Image"
#define IDT_HIDDEN_NV_IMAGE             1055  // stem of list items 1..10

// ---------------------------------------------------------------------------------------------
// Template 119, Barcode page
#define IDB_BARCODE_2D_PROPERTIES       1020
#define IDC_BARCODE_2D_FONT             1021
#define IDC_BARCODE_1D_FONT             1022
#define IDB_BARCODE_1D_PROPERTIES       1025
#define IDC_BARCODE_1D_TYPE             1026
#define IDC_BARCODE_2D_TYPE             1027
#define IDC_BARCODE_NAME                IDC_BARCODE_1D_FONT
#define IDC_BARCODE_TYPE                IDC_BARCODE_1D_TYPE
#define IDC_BARCODE_SET                 IDB_BARCODE_1D_PROPERTIES
#define IDC_COMBO_FONTNAME              IDC_BARCODE_2D_FONT
#define IDC_2D_CODE_TYPE                IDC_BARCODE_2D_TYPE
#define IDC_CODE_SET                    IDB_BARCODE_2D_PROPERTIES

// ---------------------------------------------------------------------------------------------
// Template 125, 1D barcode property dialog (OK = IDOK, Cancel = IDCANCEL)
#define IDT_HIDDEN_BC1D_HRI_NONE        1014
#define IDT_HIDDEN_BC1D_HRI_TOP         1015
#define IDT_HIDDEN_BC1D_HRI_BOTTOM      1016
#define IDT_HIDDEN_BC1D_HRI_BOTH        1017
#define IDC_BC1D_HRI_POSITION           1021
#define IDE_BC1D_WIDTH                  1022
#define IDE_BC1D_HEIGHT                 1023
#define IDSB_BC1D_WIDTH                 1024
#define IDSB_BC1D_HEIGHT                1025
#define IDR_BC1D_FONT_A                 1026
#define IDR_BC1D_FONT_B                 1027

// ---------------------------------------------------------------------------------------------
// Template 174, 2D code property dialog (OK = IDOK, Cancel = IDCANCEL)
#define IDE_BC2D_PDF_MODULE_WIDTH       1005
#define IDE_BC2D_PDF_MODULE_HEIGHT      1008
#define IDE_BC2D_QR_MODULE_SIZE         1010
#define IDE_BC2D_DM_MODULE_SIZE         1011
#define IDE_BC2D_DATABAR_MODULE_SIZE    1012
#define IDE_BC2D_COMPOSITE_MODULE_SIZE  1013
#define IDT_HIDDEN_BC2D_QR_LEVEL_L      1015
#define IDT_HIDDEN_BC2D_PDF_LEVEL_0     1016
#define IDT_HIDDEN_BC2D_PDF_LEVEL_1     1017
#define IDX_BC2D_PDF_SIMPLIFIED         1018
#define IDT_HIDDEN_BC2D_PDF_LEVEL_2     1019
#define IDT_HIDDEN_BC2D_PDF_LEVEL_3     1020
#define IDT_HIDDEN_BC2D_PDF_LEVEL_4     1021
#define IDSB_BC2D_PDF_MODULE_WIDTH      1022
#define IDT_HIDDEN_BC2D_PDF_LEVEL_5     1023
#define IDT_HIDDEN_BC2D_PDF_LEVEL_6     1024
#define IDT_HIDDEN_BC2D_PDF_LEVEL_7     1025
#define IDSB_BC2D_PDF_ROWS              1026
#define IDT_HIDDEN_BC2D_PDF_LEVEL_8     1027
#define IDSB_BC2D_PDF_MODULE_HEIGHT     1031
#define IDT_HIDDEN_BC2D_DATABAR_STACKED 1034
#define IDE_BC2D_PDF_COLUMNS            1035
#define IDT_HIDDEN_BC2D_DATABAR_STACKED_OMNI 1036
#define IDT_HIDDEN_BC2D_LINEAR_OMNI     1037  // "GS1 DataBar Omnidirection"
#define IDE_BC2D_PDF_ROWS               1038
#define IDT_HIDDEN_BC2D_LINEAR_TRUNCATED 1039 // "GS1 DataBar Truncated"
#define IDT_HIDDEN_BC2D_LINEAR_STACKED  1040  // "GS1 DataBar Stacked"
#define IDSB_BC2D_PDF_COLUMNS           1041
#define IDT_HIDDEN_BC2D_LINEAR_STACKED_OMNI 1042 // "GS1 DataBar Stacked Omnidirection"
#define IDC_BC2D_PDF_LEVEL              1043
#define IDT_HIDDEN_BC2D_LINEAR_LIMITED  1044  // "GS1 DataBar Limited"
#define IDC_BC2D_QR_LEVEL               1045
#define IDC_BC2D_DATABAR_TYPE           1046
#define IDC_BC2D_COMPOSITE_LINEAR       1047
#define IDSB_BC2D_QR_MODULE_SIZE        1048
#define IDSB_BC2D_DM_MODULE_SIZE        1049
#define IDC_BC2D_QR_MODEL               1050
#define IDT_HIDDEN_BC2D_LINEAR_EXPANDED 1051  // "GS1 DataBar Expanded"
#define IDT_HIDDEN_BC2D_QR_MODEL_1      1070
#define IDT_HIDDEN_BC2D_QR_MODEL_2      1071
#define IDT_HIDDEN_BC2D_QR_LEVEL_Q      1072
#define IDT_HIDDEN_BC2D_QR_LEVEL_M      1073
#define IDT_HIDDEN_BC2D_QR_LEVEL_H      1074
#define IDSB_BC2D_DATABAR_MODULE_SIZE   1075
#define IDSB_BC2D_COMPOSITE_MODULE_SIZE 1076

// ---------------------------------------------------------------------------------------------
// Template 115, Utility page
#define IDX_UTIL_JOURNAL                1005  // "Enable Journal"
#define IDB_UTIL_CONFIG_UTILITY         1006
#define IDB_UTIL_SPECIAL_FONT           1007
#define IDB_UTIL_JOURNAL_VIEWER         1008
#define IDX_UTIL_TEXT_KEY               1009  // "Enable Text-Key Function"
#define IDX_UTIL_IMAGE_MACRO            1010  // hidden, no behaviour
#define IDX_UTIL_PRINT_PREVIEW          1011  // "Enable Print Preview"
#define IDX_UTIL_FONT_REPLACE           1012  // "Enable Font Replacement Function"
#define IDB_UTIL_STATUS_MONITOR         1013
#define IDB_UTIL_TEXT_KEY               1019
#define IDB_UTIL_FONT_REPLACE           1020
#define IDG_UTIL_STATUS_MONITOR         1054
#define IDB_UTIL_IMAGE_MACRO            1082  // hidden, no behaviour

// ---------------------------------------------------------------------------------------------
// Template 193, Printer Settings page
#define IDT_HIDDEN_PRN_LANG_ENGLISH     1013
#define IDT_HIDDEN_PRN_LANG_GERMAN      1014
#define IDT_HIDDEN_PRN_LANG_FRENCH      1015
#define IDT_HIDDEN_PRN_LANG_SPANISH     1016
#define IDT_HIDDEN_PRN_LANG_ITALIAN     1017
#define IDT_HIDDEN_PRN_LANG_POLISH      1018
#define IDT_HIDDEN_PRN_LANG_HUNGARIAN   1019
#define IDT_HIDDEN_PRN_LANG_RUSSIAN     1020
#define IDT_HIDDEN_PRN_LANG_KOREAN      1021
#define IDT_HIDDEN_PRN_LANG_JAPANESE    1022
#define IDT_HIDDEN_PRN_LANG_CHINESE_S   1023
#define IDT_HIDDEN_PRN_LANG_CHINESE_T   1024
#define IDC_PRN_LANGUAGE                1059
#define IDR_PRN_BT_SINGLE_CHIP          1077
#define IDR_PRN_BT_TWO_CHIP             1078
#define IDG_PRN_BLUETOOTH               1079

// ---------------------------------------------------------------------------------------------
// Template 133, About (Version) page
#define IDE_ABOUT_DRIVER                1028  // read-only: driver name and version
#define IDE_ABOUT_COPYRIGHT             1029  // read-only: copyright notice
#define IDF_ABOUT_FRAME1                1051  // hidden frame
#define IDF_ABOUT_FRAME2                1052  // hidden frame, logo hook

// ---------------------------------------------------------------------------------------------
// Template 157, Dithering page
#define IDR_DITHER_MONOCHROME           1061
#define IDR_DITHER_GREYSCALE            1062
#define IDR_DITHER_NONE                 1063
#define IDR_DITHER_ERROR_DIFFUSION      1064
#define IDR_DITHER_ORDERED              1065
#define IDR_DITHER_MATRIX4              1066
#define IDR_DITHER_MATRIX8              1067
#define IDTB_DITHER_BRIGHTNESS          1068
#define IDF_DITHER_PREVIEW              1069
#define IDB_DITHER_ADVANCED             1101

// ---------------------------------------------------------------------------------------------
// Template 212, advanced dither dialog (OK = IDOK)
#define IDT_ADV_THRESHOLD_VALUE         1103
#define IDTB_ADV_THRESHOLD              1106
#define IDTB_ADV_BOLD_LINE              1107
#define IDT_ADV_BOLD_LINE_VALUE         1108
#define IDB_ADV_CLOSE                   1109
#define IDC_THRESHOLD_SLIDER            IDTB_ADV_THRESHOLD
#define IDC_BOLD_LINE_SLIDER            IDTB_ADV_BOLD_LINE
#define IDC_OK_BUTTON                   IDOK
#define IDC_CLOSE_BUTTON                IDB_ADV_CLOSE
