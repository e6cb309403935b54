# A strict load of a DXF file (no recovery) and an audit by an independent reader: every error
# or fix is printed, then the model space's entity types with their counts and the verdict.
import sys

import ezdxf

doc = ezdxf.readfile(sys.argv[1])
auditor = doc.audit()
for e in auditor.errors:
    print("ERROR", e.code, e.message)
for f in auditor.fixes:
    print("FIX", f.code, f.message)
types = {}
for e in doc.modelspace():
    types[e.dxftype()] = types.get(e.dxftype(), 0) + 1
for name, n in sorted(types.items()):
    print("TYPE %s %d" % (name, n))
print("AUDIT", "CLEAN" if not auditor.has_errors and not auditor.has_fixes else "FAILED")
