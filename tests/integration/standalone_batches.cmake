# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage

# Included by the project() of the product that is built alone: has it compile in batches, once its targets are defined.
include("${CMAKE_CURRENT_LIST_DIR}/../../cmake/CompileInBatches.cmake")
cmake_language(DEFER CALL compile_in_batches 30 projectfilecfg_files projectfilecfg_package projectfilecfg_pictures
    projectfilecfg_jobs projectfilecfg_panel)
