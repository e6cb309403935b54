// Process-wide display switches set by the suite's commands and read by the objects.
#pragma once

// mode 1 stores flag != 0 as 1 or 0; any other mode copies the stored value into flag. Always 1.
int M_GetSaveOldFlg(int mode, int& flag);
