#pragma once

#include "service/session.h"

#include <QString>

#include <memory>

/// Prints the text and ends the program.
[[noreturn]] void giveUp(const QString &text);

/// The administrator for an empty user. Gives up when the archive cannot be opened.
std::unique_ptr<kelva::Session> openArchive(const QString &path, const QString &user);

/// A user "restricted" with 50 roles, among 1,000 folders of which every second one wants one of these roles.
/// Needs the database connection "raw" to the archive.
void addRestrictedUser(const QString &path);
