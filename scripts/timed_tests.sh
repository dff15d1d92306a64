# Sourced by scripts under which everything takes many times as long: the tests
# of nothing but the time that something takes, as a filter for GoogleTest.
timed_tests='MemoryBlock.AlternatingAppendsAreFast'
timed_tests+=':ParseReal.HugeTextsTakeLittleTime'
timed_tests+=':IdIndex.*Quickly:IdIndex.FarIdThatComesAndGoes*'
timed_tests+=':LookupsAppend.*Cost*'
timed_tests+=':NeueZeile.ManyAlternatingAppendsAreQuick'
timed_tests+=':*LongTextsMatchInBoundedTime*'
timed_tests+=':Translation.CostsNoMoreThanTheLengthOfTheText'
timed_tests+=':Resort.ManyRowsTakeNoQuadraticTime'
