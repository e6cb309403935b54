// The raster-image entity, brought by the image-support module.
#pragma once

#include "dbmain.h"

class AcDbRasterImage : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbRasterImage);
};
