#include "keys/map_observation.h"

#include "references/exclusion_filter.h"
#include "tests/support/recording_observer.h"
#include "tests/support/xml_text.h"
#include "tests/unit/profiling/profile_samples.h"

namespace marrowpress {
namespace {

class MapObservationTest : public XmlTest {
protected:
    /// What is told of the faults of a map; they have no places here.
    std::string faultsOf(std::string_view xml) {
        const ParsedXml map(xml, u"file:///m/root.ditamap");
        observed.host.observations.clear();
        observeMap(*observed, map.document());
        return observed.faults();
    }

    void excludeX() { ExclusionFilterHolder::instance().reset(excludingX()); }

    ObservedScope observed;
};

TEST_F(MapObservationTest, EachThingWithoutEffectIsTold) {
    for (const auto& [xml, expected] : {
             std::pair("<map keyscope='s'/>", "210 ?:0:0 <map> s"),
             std::pair("<map><topicref keyscope='s t'/></map>", "210 ?:0:0 <topicref> s t"),
             std::pair("<map chunk='to-content'/>", "215 ?:0:0 <map> chunk"),
             std::pair("<map><topicref copy-to='x'/></map>", "215 ?:0:0 <topicref> copy-to"),
             std::pair("<map><topicref conaction='mark'/></map>", "215 ?:0:0 <topicref> conaction"),
             std::pair("<map><reltable/></map>", "215 ?:0:0 <reltable> reltable"),
             std::pair("<map><x class='- map/reltable '/></map>", "215 ?:0:0 <x> reltable"),
             std::pair("<map><ditavalref/></map>", "215 ?:0:0 <ditavalref> ditavalref"),
             std::pair("<map><x class='+ map/topicref ditavalref-d/ditavalref '/></map>",
                       "215 ?:0:0 <x> ditavalref"),
             std::pair("<subjectScheme/>", "215 ?:0:0 <subjectScheme> subjectScheme"),
             std::pair("<map class='- map/map '><x class='- map/map subjectScheme/subjectScheme '/>"
                       "</map>",
                       "215 ?:0:0 <x> subjectScheme"),
         }) {
        EXPECT_EQ(faultsOf(xml), expected) << xml;
    }
}

TEST_F(MapObservationTest, OfAnOrdinaryMapNothingIsTold) {
    EXPECT_EQ(faultsOf("<map><topicref href='a.dita' keys='k' chunk=''><topicmeta/></topicref>"
                       "<x class='- map/relrow '/><reltable class='- topic/p '/></map>"),
              "");
    EXPECT_TRUE(observed.host.observations.empty());
}

TEST_F(MapObservationTest, WhatTheProfileLeavesOutIsToldOnlyAsThat) {
    excludeX();
    EXPECT_EQ(faultsOf("<map><topicgroup audience='x'><topicref keyscope='s'/></topicgroup>"
                       "<topicref keyscope='t'/></map>"),
              "210 ?:0:0 <topicref> t");
    EXPECT_EQ(observed.host.told(ObservationKind::kExcluded), "?:0:0 <topicgroup> detail=audience");
}

TEST_F(MapObservationTest, KeysThatTheProfileLeavesOutAreTold) {
    excludeX();
    faultsOf(
        "<map><topicgroup audience='x'><keydef keys='a b' href='t.dita#t'/></topicgroup>"
        "<keydef keys='c' platform='x'/><keydef keys='d'/></map>");
    EXPECT_EQ(observed.host.told(ObservationKind::kKeyDefinition),
              "2 ?:0:0 <keydef> a detail=/m/t.dita#t\n2 ?:0:0 <keydef> b detail=/m/t.dita#t\n"
              "2 ?:0:0 <keydef> c");
}

TEST_F(MapObservationTest, ValuesThatTheProfileHasRulesForAreTold) {
    excludeX();
    faultsOf("<map audience='y z'><topicref audience='y' product='q' platform='x'/></map>");
    EXPECT_EQ(observed.host.told(ObservationKind::kConditionValue),
              "?:0:0 <map> audience detail=y\n?:0:0 <map> audience detail=z\n"
              "?:0:0 <topicref> platform detail=x");
}

TEST_F(MapObservationTest, PulledTopicsAreNothingOfTheMapsOwn) {
    EXPECT_EQ(faultsOf("<map><topic keyscope='s'><p conaction='mark'/></topic>"
                       "<topicref keyscope='t'/></map>"),
              "210 ?:0:0 <topicref> t");
}

TEST_F(MapObservationTest, AMapMayBeDeepOrExcludedAsAWhole) {
    const ParsedXml deep(nestedElements(100000, "<topicref keyscope='s'/>"));
    observeMap(*observed, deep.document());
    EXPECT_EQ(observed.faults(), "210 ?:0:0 <topicref> s");
    excludeX();
    EXPECT_EQ(faultsOf("<map audience='x' keyscope='s'/>"), "");
}

}  // namespace
}  // namespace marrowpress
