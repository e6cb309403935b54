#include "dbraster.h"

// Registered in the class dictionary only while the image-support module is loaded.
ACRX_CONS_DEFINE_MEMBERS(AcDbRasterImage, AcDbEntity, L"IMAGE")
