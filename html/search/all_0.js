var searchData=
[
  ['runtime_20kvr_20para_20linux_0',['Runtime KVR para Linux',['../md_README.html',1,'']]]
];
