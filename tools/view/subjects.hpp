// SPDX-License-Identifier: MIT
//
// The kinds of subject, for MakeSubject.
#pragma once

#include "tools/view/subject.hpp"

namespace View {

std::unique_ptr<Subject> MakeModel(const Stage& stage, Resources& resources);
std::unique_ptr<Subject> MakeMaterial(const Options& options, const Stage& stage,
                                      Resources& resources);
std::unique_ptr<Subject> MakePicture(const Stage& stage, Resources& resources);
std::unique_ptr<Subject> MakeEffect(const Options& options, const Stage& stage,
                                    Resources& resources);
std::unique_ptr<Subject> MakeEntity(const Stage& stage, Resources& resources);
std::unique_ptr<Subject> MakeScene(const Stage& stage, Resources& resources);

} // namespace View
