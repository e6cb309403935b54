// Result buffers, prompt points and result codes of the host's function interface.
#pragma once

#include "adesk.h"

using ads_real = double;
using ads_point = ads_real[3];
using ads_name = Adesk::IntPtr[2];
using ads_matrix = ads_real[4][4];
using ads_pointp = ads_real*;
using ads_namep = Adesk::IntPtr*;

enum { X = 0, Y = 1, Z = 2, T = 3 };

// Result codes
#define RTNONE 5000
#define RTREAL 5001
#define RTPOINT 5002
#define RTSHORT 5003
#define RTANG 5004
#define RTSTR 5005
#define RTENAME 5006
#define RTPICKS 5007
#define RTORINT 5008
#define RT3DPOINT 5009
#define RTLONG 5010
#define RTVOID 5014
#define RTLB 5016
#define RTLE 5017
#define RTDOTE 5018
#define RTNIL 5019
#define RTDXF0 5020
#define RTT 5021
#define RTRESBUF 5023
#define RTMODELESS 5027
#define RTINT64 5031
#define RTNORM 5100
#define RTERROR (-5001)
#define RTCAN (-5002)
#define RTREJ (-5003)
#define RTFAIL (-5004)
#define RTKWORD (-5005)
#define RTINPUTTRUNCATED (-5008)

struct ads_binary {
    short clen = 0;
    char* buf = nullptr;
};

union ads_u_val {
    ads_real rreal;
    ads_real rpoint[3];
    short rint;
    ACHAR* rstring;
    Adesk::IntPtr rlname[2];
    Adesk::Int32 rlong;
    Adesk::Int64 mnInt64;
    ads_binary rbinary;
    unsigned char ihandle[8];
};

struct resbuf {
    resbuf* rbnext;
    short restype;
    ads_u_val resval;
};

// A zeroed buffer of the given type; strings and chunks start null.
resbuf* acutNewRb(int type);
// Frees a whole chain, with the strings and chunks it owns.
int acutRelRb(resbuf* rb);
// Builds a chain from (type, value) pairs ended by 0 or RTNONE. Strings are copied.
resbuf* acutBuildList(int type, ...);
// The storage kind of a group code: RTREAL, RT3DPOINT, RTSHORT, RTLONG, RTSTR, RTENAME, RTLB...
int acdbGroupCodeToType(int groupCode);

inline void acdbPointSet(const ads_point from, ads_point to) {
    to[0] = from[0];
    to[1] = from[1];
    to[2] = from[2];
}
