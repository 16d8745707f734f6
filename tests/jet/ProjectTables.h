// The tables of a project with a few records, made by the engine alone.
#pragma once

namespace jet {
class Database;
}

/// Core tables, Individus, Déterminations, Images and Mesures, with their indexes and relations,
/// and a dozen plants with what belongs to them.
void makeProjectTables(jet::Database& database);
