#include "dravo/contacts.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "common/vector.hpp"
#include "dravo/error.hpp"
#include "support/message_of.hpp"
#include "support/molecule_sets.hpp"
#include "support/pairs.hpp"

namespace dravo::test {
namespace {

// --- the criterion ------------------------------------------------------------------------------

TEST(ContactCriterion, IsOnePointNineInSinglePrecisionWhenNothingIsSaid) {
  constexpr ContactCriterion kDefault;
  EXPECT_FALSE(kDefault.by_radii());
  EXPECT_EQ(kDefault.value(), static_cast<double>(1.9F));
  EXPECT_EQ(kDefault.text(), "1.9");
}

struct Written {
  const char* text;
  double value;
  bool by_radii;
  const char* same;
};

TEST(ContactCriterion, IsReadAsPeopleWriteIt) {
  for (const auto& [text, value, by_radii, same] :
       {Written{"1.6", 1.6, false, "1.6"}, Written{" 2 ", 2.0, false, "2"},
        Written{"1.9", 1.9, false, "1.9"}, Written{"vdw*0.8", 0.8, true, "vdw*0.8"},
        Written{"vdw", 1.0, true, "vdw*1"}, Written{" vdw * .75", 0.75, true, "vdw*0.75"},
        Written{"10", 10.0, false, "10"}, Written{"vdw*2", 2.0, true, "vdw*2"}}) {
    const ContactCriterion criterion = ContactCriterion::of_text(text);
    EXPECT_EQ(criterion.value(), value) << text;
    EXPECT_EQ(criterion.by_radii(), by_radii) << text;
    EXPECT_EQ(criterion.text(), same) << text;
    EXPECT_EQ(ContactCriterion::of_text(same).value(), value) << text;
  }
}

TEST(ContactCriterion, RefusesOtherTexts) {
  const auto told = [](const char* text) {
    return message_of<InvalidInput>([&] { ContactCriterion::of_text(text); });
  };
  for (const char* text : {"", "near", "vdw0.8", "vdw*", "vdw+0.1", "0.8*vdw", "1.6 A", "VDW*0.8"})
    EXPECT_EQ(told(text),
              "expected a distance in Angstrom (1.6) or a factor of the sum of the van der Waals "
              "radii (vdw*0.8), found \"" +
                  std::string(text) + "\"");
  EXPECT_EQ(told("0"), "expected a contact distance in Angstrom above 0 and up to 10, found 0");
  EXPECT_EQ(told("190"), "expected a contact distance in Angstrom above 0 and up to 10, found 190");
  EXPECT_EQ(told("vdw*-1"),
            "expected a factor of the van der Waals radii above 0 and up to 2, found -1");
  EXPECT_EQ(told("vdw*80"),
            "expected a factor of the van der Waals radii above 0 and up to 2, found 80");
}

TEST(ContactCriterion, RefusesNumbersThatAreNone) {
  EXPECT_THROW(ContactCriterion::distance(std::nan("")), InvalidInput);
  EXPECT_THROW(ContactCriterion::van_der_waals(INFINITY), InvalidInput);
}

// --- pairs of atoms -----------------------------------------------------------------------------

/// Argon above an O-H of 0.96 Angstrom, 2.6 from the hydrogen. Sums of radii: Ar-H 3.08, Ar-O 3.40.
const Pair kArgonOnHydroxyl =
    pair_of({{"Ar", {0, 0, 2.6}}}, {{"O", {0, 0, -0.96}}, {"H", {0, 0, 0}}});

TEST(ShortContacts, GoByTheCriterion) {
  EXPECT_EQ(short_contacts(kArgonOnHydroxyl).size(), 0U);
  const auto contacts = short_contacts(kArgonOnHydroxyl, ContactCriterion::distance(2.6));
  ASSERT_EQ(contacts.size(), 1U);
  EXPECT_EQ(contacts[0].atom1, 0);
  EXPECT_EQ(contacts[0].atom2, 2);
  EXPECT_EQ(contacts[0].distance, 2.6);
  const auto count = [](double factor) {
    return short_contacts(kArgonOnHydroxyl, ContactCriterion::van_der_waals(factor)).size();
  };
  EXPECT_EQ(count(0.844), 0U);  // 2.6 / 3.08 = 0.84416
  EXPECT_EQ(count(0.845), 1U);
  EXPECT_EQ(count(1.047), 1U);  // 3.56 / 3.40 = 1.04706
  EXPECT_EQ(count(1.048), 2U);
}

TEST(SurveyContacts, TellsTheSmallestRatioAndItsAtoms) {
  const ContactSurvey survey = survey_contacts(kArgonOnHydroxyl);
  EXPECT_EQ(survey.shortest, 2.6);
  EXPECT_EQ(survey.contacts, 0);
  EXPECT_NEAR(survey.clearance, 2.6 / 3.08, 1e-15);
  EXPECT_EQ(survey.clearance_atom1, 0);
  EXPECT_EQ(survey.clearance_atom2, 2);
}

TEST(SurveyContacts, HasNoClearanceWithoutRadii) {
  const Pair pair = pair_of({{"Rn", {0, 0, 0}}}, {{"O", {0, 0, 3}}});
  const ContactSurvey survey = survey_contacts(pair);
  EXPECT_EQ(survey.shortest, 3.0);
  EXPECT_EQ(survey.clearance, INFINITY);
  EXPECT_EQ(survey.clearance_atom1, -1);
  EXPECT_EQ(survey.clearance_atom2, -1);
  EXPECT_THROW(survey_contacts(pair, ContactCriterion::van_der_waals()), InvalidInput);
  EXPECT_THROW(short_contacts(pair, ContactCriterion::van_der_waals()), InvalidInput);
  EXPECT_TRUE(std::isnan(closest_pairs(pair, 1).at(0).ratio));
}

TEST(ClosestPairs, OfAPairAreThoseThatAreThere) {
  const auto pairs = closest_pairs(kArgonOnHydroxyl, 5);
  ASSERT_EQ(pairs.size(), 2U);
  EXPECT_EQ(pairs[0].atom2, 2);
  EXPECT_NEAR(pairs[1].distance, 3.56, 1e-15);
  EXPECT_NEAR(pairs[1].ratio, 3.56 / 3.4, 1e-15);
}

Pair pair_of(const NamedPair& named) { return {named.n1, named.atoms}; }

TEST(ShortContacts, OfPublishedDimersAreNoneByCriteriaThatLeaveHydrogenBondsInPeace) {
  std::size_t usual = 0;
  for (const NamedPair& named : s22_dimers()) {
    const Pair pair = pair_of(named);
    usual += short_contacts(pair).size();
    for (const ContactCriterion& criterion :
         {ContactCriterion::distance(1.6), ContactCriterion::van_der_waals(0.6)})
      EXPECT_EQ(short_contacts(pair, criterion).size(), 0U) << named.name << criterion.text();
  }
  EXPECT_GT(usual, 5U);
}

/// Every pair of atoms, compared with its radii one by one.
TEST(SurveyContacts, OfPublishedDimersIsThatOfAllPairs) {
  for (const NamedPair& named : s22_dimers())
    for (const ContactCriterion& criterion :
         {ContactCriterion(), ContactCriterion::distance(3.0), ContactCriterion::van_der_waals(0.8),
          ContactCriterion::van_der_waals(1.1)}) {
      const Pair pair = pair_of(named);
      const ContactSurvey survey = survey_contacts(pair, criterion);
      const auto listed = short_contacts(pair, criterion);
      double shortest = INFINITY, clearance = INFINITY;
      std::size_t contacts = 0;
      for (std::int32_t i = 0; i < pair.n1(); ++i)
        for (std::int32_t k = pair.n1(); k < pair.size(); ++k) {
          const auto one = static_cast<std::size_t>(i), two = static_cast<std::size_t>(k);
          const double distance = modulus(pair.positions()[one] - pair.positions()[two]);
          const double ratio = distance / (*van_der_waals_radius(named.atoms.symbol(i)) +
                                           *van_der_waals_radius(named.atoms.symbol(k)));
          shortest = std::min(shortest, distance);
          clearance = std::min(clearance, ratio);
          if ((criterion.by_radii() ? ratio : distance) > criterion.value()) continue;
          ASSERT_LT(contacts, listed.size());
          EXPECT_EQ(listed[contacts].atom1, i);
          EXPECT_EQ(listed[contacts].atom2, k);
          EXPECT_EQ(listed[contacts].distance, distance);
          ++contacts;
        }
      EXPECT_EQ(listed.size(), contacts) << named.name;
      EXPECT_EQ(survey.contacts, static_cast<std::int64_t>(contacts)) << named.name;
      EXPECT_EQ(survey.shortest, shortest) << named.name;
      EXPECT_EQ(survey.clearance, clearance) << named.name;
    }
}

}  // namespace
}  // namespace dravo::test
