// The commands of herbora-cli. Each gives the exit status.
#pragma once

#include "cli/Arguments.h"

namespace cli {

int runSql(const Arguments& arguments);
int runCreate(const Arguments& arguments);
int runInfos(const Arguments& arguments);
int runOptimise(const Arguments& arguments);
int runVerify(const Arguments& arguments);
int runDemo(const Arguments& arguments);
int runRequest(const Arguments& arguments);
int runImagettes(const Arguments& arguments); ///< Where pictures are built in.
int runImport(const Arguments& arguments); ///< By its first word:
int runImportAccess(const Arguments& arguments);
int runImportCsv(const Arguments& arguments);
int runImportTaxons(const Arguments& arguments);
int runImportStructure(const Arguments& arguments);
int runExport(const Arguments& arguments);

} // namespace cli
