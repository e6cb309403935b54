// What the settings files share: the process-wide caches and switches, kept in one place so
// that tests can put them back, and the helpers between the files.
#pragma once

#include "winstr.h"

namespace qor::settings {

struct Cache {
    // The installation folder, once "qordir" has been read.
    CString qorDir;
    bool qorDirKnown = false;
    // M_IsChangChunCode: -1 until the code type is read.
    int changChun = -1;
    // The sunlight distance ratio; 0.0 until loaded or set.
    double sundist = 0.0;
    // xgbuild.dat, read once per process.
    bool xgLoaded = false;
    int sketchUp = 1;
    int budWinFromFile = 0;
    int rizhao = 1;
    // LandView.dat: empty until read successfully. The number of the file is not kept, so
    // the one handed out stays 0.0.
    CByteArray landFlags;
    double landValue = 0.0;
    // Switches set by the suite's commands.
    int greenLine = 0;
    int budWin = 1;
    int budLineWin = 0;
    int vport = 0;
    int highlight = 0;
    int saveOld = 0;
    int pipeCode = 0;
    int qorVport = 1;
    int blockView = 0;
    int planView = 0;
};

Cache& cache();

// The folder of a code standard below "data\" and "lib\".
CString codeFolder(int codeType);

} // namespace qor::settings
