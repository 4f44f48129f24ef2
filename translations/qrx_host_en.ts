<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name>AboutDialog</name>
    <message>
        <source>关于 qrx_host</source>
        <translation>About qrx_host</translation>
    </message>
    <message>
        <source>机器人控制器主机库：连接控制器，点动，运动，IO，作业与标定。</source>
        <translation>Host library for the robot controller: connection, jogging, motion, IO, jobs and calibration.</translation>
    </message>
    <message>
        <source>已连接控制器</source>
        <translation>Connected to the controller</translation>
    </message>
    <message>
        <source>未连接控制器</source>
        <translation>Not connected to a controller</translation>
    </message>
    <message>
        <source>点动面板</source>
        <translation>Jog panel</translation>
    </message>
    <message>
        <source>用户坐标标定</source>
        <translation>User frame calibration</translation>
    </message>
</context>
<context>
    <name>CalibrationDialog</name>
    <message>
        <source>未连接控制器</source>
        <translation>Not connected to a controller</translation>
    </message>
    <message>
        <source>用户坐标%1: %2</source>
        <translation>User frame %1: %2</translation>
    </message>
    <message>
        <source>用户坐标标定</source>
        <translation>User frame calibration</translation>
    </message>
    <message>
        <source>用户坐标号</source>
        <translation>User frame</translation>
    </message>
    <message>
        <source>选择</source>
        <translation>Select</translation>
    </message>
    <message>
        <source>计算参数</source>
        <translation>Parameters</translation>
    </message>
    <message>
        <source>计算</source>
        <translation>Calculate</translation>
    </message>
    <message>
        <source>第%1点</source>
        <translation>Point %1</translation>
    </message>
    <message>
        <source>已标定</source>
        <translation>Marked</translation>
    </message>
    <message>
        <source>未标定</source>
        <translation>Not marked</translation>
    </message>
    <message>
        <source>标定</source>
        <translation>Mark</translation>
    </message>
    <message>
        <source>清除</source>
        <translation>Clear</translation>
    </message>
    <message>
        <source>四点标定计算成功</source>
        <translation>Four-point calculation succeeded</translation>
    </message>
    <message>
        <source>四点标定计算失败</source>
        <translation>Four-point calculation failed</translation>
    </message>
    <message>
        <source>%1 长度: %2 %3 %4 角度偏差: %5</source>
        <translation>%1 Lengths: %2 %3 %4 Angle deviation: %5</translation>
    </message>
</context>
<context>
    <name>ContinuousMotion</name>
    <message>
        <source>参数值超限</source>
        <translation>Parameter value out of range</translation>
    </message>
</context>
<context>
    <name>DialogKit</name>
    <message>
        <source>伺服停止</source>
        <translation>Servo off</translation>
    </message>
    <message>
        <source>伺服就绪</source>
        <translation>Servo ready</translation>
    </message>
    <message>
        <source>伺服错误</source>
        <translation>Servo error</translation>
    </message>
    <message>
        <source>伺服运行</source>
        <translation>Servo running</translation>
    </message>
    <message>
        <source>示教模式</source>
        <translation>Teach mode</translation>
    </message>
    <message>
        <source>远程模式</source>
        <translation>Remote mode</translation>
    </message>
    <message>
        <source>运行模式</source>
        <translation>Run mode</translation>
    </message>
    <message>
        <source>关节坐标系</source>
        <translation>Joint</translation>
    </message>
    <message>
        <source>直角坐标系</source>
        <translation>Cartesian</translation>
    </message>
    <message>
        <source>工具坐标系</source>
        <translation>Tool</translation>
    </message>
    <message>
        <source>用户坐标系</source>
        <translation>User</translation>
    </message>
    <message>
        <source>未知 (%1)</source>
        <translation>Unknown (%1)</translation>
    </message>
</context>
<context>
    <name>JogPanel</name>
    <message>
        <source>伺服不在运行状态,无法执行点动操作!</source>
        <translation>The servo is not running, cannot jog!</translation>
    </message>
    <message>
        <source>未连接控制器</source>
        <translation>Not connected to a controller</translation>
    </message>
    <message>
        <source>伺服: %1</source>
        <translation>Servo: %1</translation>
    </message>
    <message>
        <source>模式: %1</source>
        <translation>Mode: %1</translation>
    </message>
    <message>
        <source>点动面板</source>
        <translation>Jog panel</translation>
    </message>
    <message>
        <source>点动速度</source>
        <translation>Jog speed</translation>
    </message>
    <message>
        <source>坐标系</source>
        <translation>Coordinate system</translation>
    </message>
</context>
<context>
    <name>Robot</name>
    <message>
        <source>伺服不在运行状态,无法执行点动操作!</source>
        <translation>The servo is not running, cannot jog!</translation>
    </message>
    <message>
        <source>接收DH参数数据 d1=%1 a2=%2 a3=%3 d4=%4 d6=%5 a1=%6 1-2=%11  2-3=%12  3-2=%13  3-4=%14  4-5=%7 4-6=%8 5-6=%9 theta=%10</source>
        <translation>Received DH parameters d1=%1 a2=%2 a3=%3 d4=%4 d6=%5 a1=%6 1-2=%11  2-3=%12  3-2=%13  3-4=%14  4-5=%7 4-6=%8 5-6=%9 theta=%10</translation>
    </message>
    <message>
        <source>接收DH参数数据 d1=%1 a2=%2 a3=%3 d4=%4 d6=%5  d6=%15 a1=%6 1-2=%11  2-3=%12  3-2=%13  3-4=%14  4-5=%7 4-6=%8 5-6=%9 theta=%10</source>
        <translation>Received DH parameters d1=%1 a2=%2 a3=%3 d4=%4 d6=%5  d6=%15 a1=%6 1-2=%11  2-3=%12  3-2=%13  3-4=%14  4-5=%7 4-6=%8 5-6=%9 theta=%10</translation>
    </message>
    <message>
        <source>接收DH参数数据 a1=%1 a2=%2 a3=%3 a4=%4 d4=%5 couple_2_3=%6 couple_3_4=%7</source>
        <translation>Received DH parameters a1=%1 a2=%2 a3=%3 a4=%4 d4=%5 couple_2_3=%6 couple_3_4=%7</translation>
    </message>
    <message>
        <source>接收DH参数数据 d1=%1 a2=%2 a3=%3 d4=%4 d6=%5 a1=%6 a2=%7 1-2=%11  2-3=%12  3-2=%13  3-4=%14  4-5=%8 4-6=%9 5-6=%10</source>
        <translation>Received DH parameters d1=%1 a2=%2 a3=%3 d4=%4 d6=%5 a1=%6 a2=%7 1-2=%11  2-3=%12  3-2=%13  3-4=%14  4-5=%8 4-6=%9 5-6=%10</translation>
    </message>
    <message>
        <source>接收DH参数数据 L1=%1 L2=%2 L3=%3 L4=%4 L5=%5 L6=%6 L7=%7 L8=%8 couple_1_2=%9  couple_2_3=%10 couple_3_2=%11  couple_3_4=%12 couple_4_5=%13 couple_4_6=%14 couple_5_6=%15</source>
        <translation>Received DH parameters L1=%1 L2=%2 L3=%3 L4=%4 L5=%5 L6=%6 L7=%7 L8=%8 couple_1_2=%9  couple_2_3=%10 couple_3_2=%11  couple_3_4=%12 couple_4_5=%13 couple_4_6=%14 couple_5_6=%15</translation>
    </message>
    <message>
        <source>机器人1</source>
        <translation>机器人1</translation>
    </message>
    <message>
        <source>机器人2</source>
        <translation>机器人2</translation>
    </message>
    <message>
        <source>机器人3</source>
        <translation>机器人3</translation>
    </message>
    <message>
        <source>机器人4</source>
        <translation>机器人4</translation>
    </message>
    <message>
        <source>错误： </source>
        <translation>Error: </translation>
    </message>
    <message>
        <source>错误代码: 0x</source>
        <translation>Error code: 0x</translation>
    </message>
    <message>
        <source>警告： </source>
        <translation>Warning: </translation>
    </message>
    <message>
        <source>消息： </source>
        <translation>Message: </translation>
    </message>
    <message>
        <source>接收焊接装备数据 arcDetect=%1 arcConfirm=%2 arcOffDetect=%3 preAspirated=%4 delAspirated=%5withdrawwire=%6 breakRewire=%7 distance=%8 velocity=%9</source>
        <translation>Received welding equipment data arcDetect=%1 arcConfirm=%2 arcOffDetect=%3 preAspirated=%4 delAspirated=%5withdrawwire=%6 breakRewire=%7 distance=%8 velocity=%9</translation>
    </message>
    <message>
        <source>伺服-</source>
        <translation>Servo-</translation>
    </message>
    <message>
        <source>机器人</source>
        <translation>Robot </translation>
    </message>
    <message>
        <source> 不在安全位置 </source>
        <translation> not in a safe position </translation>
    </message>
    <message>
        <source> 外部轴不在安全位置 </source>
        <translation> external axes not in a safe position </translation>
    </message>
    <message>
        <source>接收机器人运行状态 robot=%1 status=%2</source>
        <translation>Received robot running state robot=%1 status=%2</translation>
    </message>
    <message>
        <source>收到机器人运行状态 robot=%1 status=%2</source>
        <translation>Got robot running state robot=%1 status=%2</translation>
    </message>
    <message>
        <source>接收关节参数数据 joint=%1 posSWLimit=%2 negSWLimit=%3 ratedvel=%4 DeRatedVel=%5 maxRotSpeed=%6 maxDeRotSpeed=%7 maxAcc=%8 </source>
        <translation>Received joint parameters joint=%1 posSWLimit=%2 negSWLimit=%3 ratedvel=%4 DeRatedVel=%5 maxRotSpeed=%6 maxDeRotSpeed=%7 maxAcc=%8 </translation>
    </message>
    <message>
        <source>maxDecel=%9 reducRatio=%10 encoderResolution=%11 ratedrotspeed=%12 ratedderotspeed=%13 backlash=%14 direction=%15 AxisDirection=%16</source>
        <translation>maxDecel=%9 reducRatio=%10 encoderResolution=%11 ratedrotspeed=%12 ratedderotspeed=%13 backlash=%14 direction=%15 AxisDirection=%16</translation>
    </message>
    <message>
        <source>接收关节轴最大点动速度 AxisNum=%1 MaxSpeed=%2 MaxAcc=%3</source>
        <translation>Received maximum jog speed of joint AxisNum=%1 MaxSpeed=%2 MaxAcc=%3</translation>
    </message>
    <message>
        <source>接收机器人插补方式 interpolationMethod=%1</source>
        <translation>Received interpolation method interpolationMethod=%1</translation>
    </message>
    <message>
        <source>接收点动灵敏度 Sensitivity=%1</source>
        <translation>Received jog sensitivity Sensitivity=%1</translation>
    </message>
    <message>
        <source>接收变位机轴数 %1</source>
        <translation>Received positioner axis count %1</translation>
    </message>
    <message>
        <source>接收机器人型号 六轴机器人</source>
        <translation>Received robot type: six-axis robot</translation>
    </message>
    <message>
        <source>接收机器人型号四轴SCARA机器人</source>
        <translation>Received robot type: four-axis SCARA robot</translation>
    </message>
    <message>
        <source>接收机器人型号四轴码垛机器人</source>
        <translation>Received robot type: four-axis palletizing robot</translation>
    </message>
    <message>
        <source>接收机器人型号四轴机器人</source>
        <translation>Received robot type: four-axis robot</translation>
    </message>
    <message>
        <source>接收机器人型号一轴机器人</source>
        <translation>Received robot type: one-axis robot</translation>
    </message>
    <message>
        <source>接收机器人型号五轴机器人</source>
        <translation>Received robot type: five-axis robot</translation>
    </message>
    <message>
        <source>接收机器人型号UR机器人</source>
        <translation>Received robot type: UR robot</translation>
    </message>
    <message>
        <source>接收机器人型号二轴SCARA机器人</source>
        <translation>Received robot type: two-axis SCARA robot</translation>
    </message>
    <message>
        <source>接收机器人型号SCARA异型一机器人</source>
        <translation>Received robot type: SCARA variant 1 robot</translation>
    </message>
    <message>
        <source>接收机器人型号四轴码垛异形一机器人</source>
        <translation>Received robot type: four-axis palletizing variant 1 robot</translation>
    </message>
    <message>
        <source>接收机器人型号六轴喷涂机器人</source>
        <translation>Received robot type: six-axis spray robot</translation>
    </message>
    <message>
        <source>接收机器人型号四轴直角机器人</source>
        <translation>Received robot type: four-axis Cartesian robot</translation>
    </message>
    <message>
        <source>接收机器人型号四轴极坐标异型机器人</source>
        <translation>Received robot type: four-axis polar variant robot</translation>
    </message>
    <message>
        <source>接收机器人型号 六轴异型一</source>
        <translation>Received robot type: six-axis variant 1</translation>
    </message>
    <message>
        <source>接收机器人型号龙门焊接机器人</source>
        <translation>Received robot type: gantry welding robot</translation>
    </message>
    <message>
        <source>接收机器人型号delta机器人</source>
        <translation>Received robot type: delta robot</translation>
    </message>
    <message>
        <source>接收伺服状态 mode=%1 robot=%2 status=%3</source>
        <translation>Received servo state mode=%1 robot=%2 status=%3</translation>
    </message>
    <message>
        <source>接收当前工作模式: 示教模式</source>
        <translation>Received current operation mode: teach mode</translation>
    </message>
    <message>
        <source>接收当前工作模式: 远程模式</source>
        <translation>Received current operation mode: remote mode</translation>
    </message>
    <message>
        <source>接收当前工作模式: 运行模式</source>
        <translation>Received current operation mode: run mode</translation>
    </message>
    <message>
        <source>接收机器人%1当前坐标系为关节坐标系</source>
        <translation>Received: robot %1 coordinate system is joint</translation>
    </message>
    <message>
        <source>接收机器人%1当前坐标系为直角坐标系</source>
        <translation>Received: robot %1 coordinate system is Cartesian</translation>
    </message>
    <message>
        <source>接收机器人%1当前坐标系为工具坐标系</source>
        <translation>Received: robot %1 coordinate system is tool</translation>
    </message>
    <message>
        <source>接收机器人%1当前坐标系为用户坐标系</source>
        <translation>Received: robot %1 coordinate system is user</translation>
    </message>
    <message>
        <source>接收当前速度为0.1°</source>
        <translation>Received current speed 0.1°</translation>
    </message>
    <message>
        <source>接收当前速度为1mm</source>
        <translation>Received current speed 1mm</translation>
    </message>
    <message>
        <source>接收当前速度为0.01°</source>
        <translation>Received current speed 0.01°</translation>
    </message>
    <message>
        <source>接收当前速度为0.1mm</source>
        <translation>Received current speed 0.1mm</translation>
    </message>
    <message>
        <source>接收当前速度为0.001°</source>
        <translation>Received current speed 0.001°</translation>
    </message>
    <message>
        <source>接收当前速度为0.01mm</source>
        <translation>Received current speed 0.01mm</translation>
    </message>
    <message>
        <source>接收当前速度为%1%</source>
        <translation>Received current speed %1%</translation>
    </message>
    <message>
        <source>接收当前无工具手</source>
        <translation>Received: no tool in use</translation>
    </message>
    <message>
        <source>接收当前工具手为%1</source>
        <translation>Received current tool %1</translation>
    </message>
    <message>
        <source>接收当前控制器工作模式deadman=%1</source>
        <translation>Received controller deadman state deadman=%1</translation>
    </message>
    <message>
        <source>拖拽</source>
        <translation>Drag</translation>
    </message>
    <message>
        <source>点动</source>
        <translation>Jog</translation>
    </message>
    <message>
        <source>接收机器人数量 = %1</source>
        <translation>Received robot count = %1</translation>
    </message>
    <message>
        <source>接收工具手参数 toolNum=%1 x=%2 y=%3 z=%4 A=%5 B=%6 C=%7 note=%8</source>
        <translation>Received tool parameters toolNum=%1 x=%2 y=%3 z=%4 A=%5 B=%6 C=%7 note=%8</translation>
    </message>
    <message>
        <source>接收用户坐标数据 userNum=%1 inquire=%2 pos1=%3 pos2=%4 pos3=%5 pos4=%6</source>
        <translation>Received user frame data userNum=%1 inquire=%2 pos1=%3 pos2=%4 pos3=%5 pos4=%6</translation>
    </message>
    <message>
        <source>接收用户坐标数据 userNum=%1 inquire=%2 pos1=%3 pos2=%4 pos3=%5 pos4=%6 pos5=%7 pos6=%8</source>
        <translation>Received user frame data userNum=%1 inquire=%2 pos1=%3 pos2=%4 pos3=%5 pos4=%6 pos5=%7 pos6=%8</translation>
    </message>
    <message>
        <source>接收切换用户坐标 userNum=%1</source>
        <translation>Received user frame switch userNum=%1</translation>
    </message>
    <message>
        <source>接收用户坐标注释 note=%1</source>
        <translation>Received user frame note note=%1</translation>
    </message>
    <message>
        <source>接收工具手标定数据 pointNum=%1 x=%2 y=%3 z=%4 a=%5 b=%6 c=%7</source>
        <translation>Received tool calibration point pointNum=%1 x=%2 y=%3 z=%4 a=%5 b=%6 c=%7</translation>
    </message>
    <message>
        <source>接收工具手标定 20点标定数据 pointNum=%1 x=%2 y=%3 z=%4 a=%5 b=%6 c=%7</source>
        <translation>Received 20-point tool calibration point pointNum=%1 x=%2 y=%3 z=%4 a=%5 b=%6 c=%7</translation>
    </message>
    <message>
        <source>接收工具手标定 20点标定中已经标定数据 pointNum=%1 x=%2 y=%3 z=%4 a=%5 b=%6 c=%7</source>
        <translation>Received point already taught in the 20-point tool calibration pointNum=%1 x=%2 y=%3 z=%4 a=%5 b=%6 c=%7</translation>
    </message>
    <message>
        <source>接收工具手标定 7点标定中已经标定数据 pointNum=%1 x=%2 y=%3 z=%4 a=%5 b=%6 c=%7</source>
        <translation>Received point already taught in the 7-point tool calibration pointNum=%1 x=%2 y=%3 z=%4 a=%5 b=%6 c=%7</translation>
    </message>
    <message>
        <source>接收工具手标定计算成功</source>
        <translation>Tool calibration calculation succeeded</translation>
    </message>
    <message>
        <source>接收工具手标定失败</source>
        <translation>Tool calibration failed</translation>
    </message>
    <message>
        <source>接收工具手标定计算成功,结果值为%1</source>
        <translation>Tool calibration calculation succeeded, result %1</translation>
    </message>
    <message>
        <source>接收工具手标定失败,结果值为%1</source>
        <translation>Tool calibration failed, result %1</translation>
    </message>
    <message>
        <source>20点标定，将结果位置标为零点成功</source>
        <translation>20-point calibration: result position marked as zero point</translation>
    </message>
    <message>
        <source>20点标定，将结果位置标为零点失败</source>
        <translation>20-point calibration: marking the result position as zero point failed</translation>
    </message>
    <message>
        <source>接收零点标定成功</source>
        <translation>Zero-point calibration succeeded</translation>
    </message>
</context>
<context>
    <name>TcpConnectModule</name>
    <message>
        <source>发送设置当前坐标系为关节坐标系</source>
        <translation>Sending: set coordinate system to joint</translation>
    </message>
    <message>
        <source>发送设置当前坐标系为直角坐标系</source>
        <translation>Sending: set coordinate system to Cartesian</translation>
    </message>
    <message>
        <source>发送设置当前坐标系为工具坐标系</source>
        <translation>Sending: set coordinate system to tool</translation>
    </message>
    <message>
        <source>发送设置当前坐标系为用户坐标系</source>
        <translation>Sending: set coordinate system to user</translation>
    </message>
    <message>
        <source>发送伺服状态 status=%1</source>
        <translation>Sending servo state status=%1</translation>
    </message>
    <message>
        <source>发送当前操作模式 mode=%1</source>
        <translation>Sending operation mode mode=%1</translation>
    </message>
    <message>
        <source>向控制器发送上电命令</source>
        <translation>Sending power-on command to the controller</translation>
    </message>
    <message>
        <source>向控制器发送下电命令</source>
        <translation>Sending power-off command to the controller</translation>
    </message>
    <message>
        <source>发送清除错误</source>
        <translation>Sending clear error</translation>
    </message>
    <message>
        <source>手动停止</source>
        <translation>Manual stop</translation>
    </message>
    <message>
        <source>手动开始</source>
        <translation>Manual start</translation>
    </message>
</context>
<context>
    <name>TcpConnectModulePrivate</name>
    <message>
        <source>关闭网络连接</source>
        <translation>Closing the network connection</translation>
    </message>
    <message>
        <source>重置网络连接 尝试连接IP</source>
        <translation>Resetting the network connection, trying IP</translation>
    </message>
    <message>
        <source>端口 :</source>
        <translation>port :</translation>
    </message>
    <message>
        <source>连接超时 主动断开</source>
        <translation>Connection timed out, disconnecting</translation>
    </message>
</context>
<context>
    <name>TcpUpDownFile</name>
    <message>
        <source>socket连接失败.....</source>
        <translation>Socket connection failed.....</translation>
    </message>
    <message>
        <source> 上传失败！</source>
        <translation> upload failed!</translation>
    </message>
    <message>
        <source>上传文件中，不允许上传文件</source>
        <translation>An upload is in progress; no other upload is allowed</translation>
    </message>
    <message>
        <source>无法读取上传程序：</source>
        <translation>Cannot read the program to upload: </translation>
    </message>
    <message>
        <source>控制器拒绝上传程序：</source>
        <translation>The controller refused the program upload: </translation>
    </message>
    <message>
        <source>文件【</source>
        <translation>File [</translation>
    </message>
    <message>
        <source>】无法打开</source>
        <translation>] cannot be opened</translation>
    </message>
    <message>
        <source>上传控制器软件失败</source>
        <translation>Uploading the controller software failed</translation>
    </message>
    <message>
        <source>导入配置文件失败</source>
        <translation>Importing the configuration file failed</translation>
    </message>
    <message>
        <source>导入配置参数文件-%1</source>
        <translation>Importing configuration parameter file - %1</translation>
    </message>
    <message>
        <source>导入程序-%1</source>
        <translation>Importing program - %1</translation>
    </message>
    <message>
        <source>控制器发送数据有误</source>
        <translation>The controller sent invalid data</translation>
    </message>
    <message>
        <source>程序发送数目不正确</source>
        <translation>The controller sent the wrong number of programs</translation>
    </message>
    <message>
        <source>控制器发送的文件名不安全，已中止传输：</source>
        <translation>The controller sent an unsafe file name, transfer aborted: </translation>
    </message>
    <message>
        <source>控制器发送文件名个数不符</source>
        <translation>The number of file names sent by the controller does not match</translation>
    </message>
    <message>
        <source>下载日志文件出现问题，请重新下载</source>
        <translation>Downloading the log files went wrong, please download again</translation>
    </message>
    <message>
        <source>下载文件出现问题，请重新下载</source>
        <translation>Downloading the files went wrong, please download again</translation>
    </message>
    <message>
        <source>控制器拒绝下载配置文件</source>
        <translation>The controller refused the configuration file download</translation>
    </message>
    <message>
        <source>控制器拒绝下载日志文件</source>
        <translation>The controller refused the log file download</translation>
    </message>
    <message>
        <source>控制器拒绝下载程序</source>
        <translation>The controller refused the program download</translation>
    </message>
    <message>
        <source>文件名有误：</source>
        <translation>Wrong file name: </translation>
    </message>
    <message>
        <source>程序下载失败：</source>
        <translation>Program download failed: </translation>
    </message>
    <message>
        <source>无法创建配置文件路径，无法继续下载</source>
        <translation>Cannot create the configuration file folder, the download cannot continue</translation>
    </message>
    <message>
        <source>无法创建日志文件路径，无法继续下载</source>
        <translation>Cannot create the log file folder, the download cannot continue</translation>
    </message>
    <message>
        <source>无法创建ENI文件路径，无法继续下载</source>
        <translation>Cannot create the ENI file folder, the download cannot continue</translation>
    </message>
    <message>
        <source>无法创建配置文件【</source>
        <translation>Cannot create configuration file [</translation>
    </message>
    <message>
        <source>】失败</source>
        <translation>]</translation>
    </message>
    <message>
        <source>无法创建日志文件【</source>
        <translation>Cannot create log file [</translation>
    </message>
    <message>
        <source>】</source>
        <translation>]</translation>
    </message>
    <message>
        <source>无法创建ENI文件【</source>
        <translation>Cannot create ENI file [</translation>
    </message>
    <message>
        <source>创建文件失败</source>
        <translation>Creating the file failed</translation>
    </message>
    <message>
        <source>控制器发送的日志列表为空，无法导出控制器日志</source>
        <translation>The log list sent by the controller is empty, the controller logs cannot be exported</translation>
    </message>
    <message>
        <source>控制器发送的ENI列表为空，无法导出控制器ENI</source>
        <translation>The ENI list sent by the controller is empty, the controller ENI files cannot be exported</translation>
    </message>
</context>
</TS>
